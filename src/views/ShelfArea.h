#pragma once

#include <QPointF>
#include <QRectF>
#include <functional>
#include <list>
#include <optional>

#include "creature/NotchModel.h"
#include "motion/Animated.h"
#include "views/Chip.h"
#include "views/DisplayList.h"

/// The rows of chips below the open face, the pills that unfold and fold them, and the whispered meeting. It is drawn
/// around the middle of its frame of reference; `top` is the height at which it begins there. Main thread only; the
/// references must outlive it.
class ShelfArea {
 public:
    /// `changed` is called when the shelf looks different from before or has begun to move.
    ShelfArea(NotchModel& model, const ChipPorts& ports, Clock& clock, MainLoop& loop, std::function<void()> changed);

    void update(const std::optional<Animation>& how);
    /// When it looks different next, by Clock::uptime().
    double nextFrame() const;
    void compose(DisplayList& list, double top) const;

    /// The pointer is at `point`, or nowhere near.
    void pointerMoved(const std::optional<QPointF>& point, double top);
    /// Uses the chip, or unfolds or folds the shelf, if `point` is on a chip or a pill; tells whether it was.
    bool tap(const QPointF& point, double top);
    /// Takes a press on a chip's remove button; tells whether it did.
    bool press(const QPointF& point, double top);
    /// Ends such a press, released `way` points from where it began.
    void release(const QPointF& way);

    /// The chip at `point`; null for none. It lives until the next update().
    const Chip* chipAt(const QPointF& point, double top) const;

 private:
    struct Layout;

    Layout layout() const;
    bool wanted() const;
    bool reachable() const { return wanted() && !m_.asleep; }
    QList<HeldThing> shownThings() const;
    void arrange(const std::optional<Animation>& how);
    void hover();
    void composePill(DisplayList& list) const;
    void composeWhisper(DisplayList& list) const;
    /// A row that would be too wide is drawn smaller.
    QTransform fitting() const;
    /// A point of the frame of reference in the chips' own coordinates.
    QPointF onShelf(const QPointF& point, double top) const;

    NotchModel& m_;
    const ChipPorts& ports_;
    Clock& clock_;
    MainLoop& loop_;
    std::function<void()> changed_;

    std::list<Chip> chips_;  // those that fade out too
    int chipsMade_ = 0;
    std::optional<QPointF> pointer_;  // in the chips' coordinates
    Chip* pressed_ = nullptr;         // its remove button is held down
    Animated<double> presence_{0, 0.002};
    Animated<double> scale_{1, 0.001};  // of the chips, to fit the row into the body
};
