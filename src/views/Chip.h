#pragma once

#include <QImage>
#include <QPointF>
#include <QRectF>
#include <QString>
#include <functional>
#include <memory>

#include "motion/Animated.h"
#include "platform/Clock.h"
#include "platform/MainLoop.h"
#include "views/ChipPorts.h"
#include "views/DisplayList.h"
#include "views/HoverHold.h"
#include "views/RemoveX.h"

/// One held thing in its place on the shelf: a glyph above a caption, lit up under the pointer, with a button in the
/// corner that removes it. Coordinates are those of the shelf. Main thread only; the references must outlive it.
class Chip {
 public:
    static constexpr double width = 50;   ///< a 42 point caption with 4 on either side
    static constexpr double height = 54;  ///< a 30 point glyph, 3 points, a 9 point caption, 6 above and below

    /// `number` tells the chip from all others that there were; `middle` is the place of its middle. `changed` is
    /// called when the chip looks different from before or has begun to move.
    Chip(int number, HeldThing thing, const QPointF& middle, const ChipPorts& ports, Clock& clock, MainLoop& loop,
         std::function<void()> changed);

    const HeldThing& thing() const { return thing_; }
    /// The same thing in another state: a timer that has rung.
    void setThing(const HeldThing& thing);
    void moveTo(const QPointF& middle, const std::optional<Animation>& how);
    /// Fades it in or out.
    void show(bool shown, const std::optional<Animation>& how);
    bool shown() const { return presence_.target() == 1; }
    /// It has faded out.
    bool gone() const;

    /// The pointer came over the chip or left it.
    void setHover(bool hover);
    /// Where it can be hovered, pressed and clicked: a little beyond its edge, so that a lit chip, which is drawn
    /// larger, answers wherever it is seen.
    QRectF outer() const;
    QRectF inner() const;
    /// Whether a press at `point` is for the remove button.
    bool removeHit(const QPointF& point) const;
    void pressRemove();
    /// Ends the press; tells whether it was meant to remove, having been released `way` points from its start.
    bool releaseRemove(const QPointF& way);

    /// The file's picture, to go along when it is dragged away; null for other things.
    const QImage& picture() const { return picture_; }

    /// When it looks different next, by Clock::uptime().
    double nextFrame() const;
    void compose(DisplayList& list) const;

 private:
    struct Look;

    const HeldTimer* timer() const { return std::get_if<HeldTimer>(&thing_); }
    bool removeShown() const { return hover_ || hold_.alive() || ports_.showX; }
    void updateRemove(const std::optional<Animation>& how);
    void findPicture();
    /// The last whole second since the chip was made: its countdown changes only then.
    double lastTick() const;
    QString countdown() const;
    Look look() const;
    static void drawGlyph(Canvas& canvas, const Look& look, const QImage& picture);

    int number_;
    HeldThing thing_;
    const ChipPorts& ports_;
    Clock& clock_;
    std::function<void()> changed_;
    double made_;  // Clock::uptime()

    QString caption_;
    QImage picture_;
    bool hover_ = false;
    HoverHold hold_;
    RemoveX remove_;
    Animated<QPointF> middle_;
    Animated<double> presence_{0, 0.002};
    Animated<double> glow_{0, 0.002};                       // 1 under the pointer
    std::shared_ptr<int> alive_ = std::make_shared<int>();  // for an icon that comes late
};
