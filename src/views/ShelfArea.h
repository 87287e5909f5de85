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
#include "views/Pill.h"

/// The rows of chips below the open face, the pill that unfolds and folds them, and the whispered meeting. While a drag
/// is near they step back behind the open mouth, small and faint. It is drawn around the middle of its frame of
/// reference; `top` is the height at which it begins there. Main thread only; the references must outlive it.
class ShelfArea {
 public:
    /// `changed` is called when the shelf looks different from before or has begun to move.
    ShelfArea(NotchModel& model, const ChipPorts& ports, Clock& clock, MainLoop& loop, std::function<void()> changed);

    /// `top` is where it will be when everything has come to rest.
    void update(const std::optional<Animation>& how, double top);
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

    Layout layout(double top) const;
    void fit(Layout& layout, double row, double top) const;
    bool wanted() const;
    bool reachable() const { return wanted() && !m_.asleep && !steppedBack(); }
    bool steppedBack() const { return m_.dropTargeted || m_.dragNear; }
    QList<HeldThing> shownThings() const;
    void arrange(const Layout& layout, const std::optional<Animation>& how);
    void whisper(const Layout& layout, const std::optional<Animation>& how);
    void hover();
    void composeWhisper(DisplayList& list) const;
    /// The nearest of the chips that answer at a point of the chips' own coordinates.
    Chip* chipNear(const QPointF& place);
    /// What would be too large for the body is drawn smaller.
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
    Pill pill_;
    QString whisper_;
    Animated<double> presence_{0, 0.002}, strength_{1, 0.002};
    Animated<double> scale_{1, 0.001}, drop_{0};  // of the chips and the pill, to fit them into the body
    Animated<double> whisperShown_{0, 0.002}, whisperTop_{0};
};
