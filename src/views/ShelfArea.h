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
    /// A press begins; tells whether it is on a chip's remove button.
    bool press(const QPointF& point, double top);
    /// Ends a press on a remove button, released `way` points from where it began.
    void release(const QPointF& way);
    /// Ends any other press that was a tap at `point`: uses the chip that was pressed, wherever it is by now, or
    /// unfolds or folds the shelf if there is a pill; tells whether it did either.
    bool tap(const QPointF& point, double top);
    /// The chip that the press is on, if it is still shown; null for none. It lives until the next update().
    const Chip* pressedChip() const { return pressed_ && pressed_->shown() ? pressed_ : nullptr; }

    /// The chip at `point`; null for none. It lives until the next update().
    Chip* chipAt(const QPointF& point, double top);

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
    Chip* pressed_ = nullptr;         // by the press that has begun last; not forgotten until that ends
    Animated<double> presence_{0, 0.002};
    Animated<double> scale_{1, 0.001};  // of the chips, to fit the row into the body
};
