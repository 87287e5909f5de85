#pragma once

#include <QImage>
#include <QString>

#include "platform/Lifetime.h"
#include "views/RemoveX.h"
#include "views/View.h"

/// One held thing in its place on the shelf: a glyph above a caption, lit up under the pointer, with a button in the
/// corner that removes it. Coordinates are those of the shelf. Main thread only; the references must outlive it.
class Chip {
 public:
    static constexpr double width = 50;   ///< a 42 point caption with 4 on either side
    static constexpr double height = 54;  ///< a 30 point glyph, 3 points, a 9 point caption, 6 above and below

    /// `number` tells the chip from all others that there were; `middle` is the place of its middle.
    Chip(int number, HeldThing thing, const QPointF& middle, const ViewContext& context);

    const HeldThing& thing() const { return thing_; }
    /// The same thing in another state: a timer that has rung.
    void setThing(const HeldThing& thing) { thing_ = thing; }
    void moveTo(const QPointF& middle, const std::optional<Animation>& how) {
        middle_.aim(middle, how, context_.now());
    }
    /// Fades it in or out.
    void show(bool shown, const std::optional<Animation>& how) { presence_.aim(shown ? 1 : 0, how, context_.now()); }
    bool shown() const { return presence_.target() == 1; }
    /// It has faded out.
    bool gone() const { return !shown() && !presence_.moving(context_.now()); }

    /// The pointer came over the chip or left it.
    void setHover(bool hover);
    /// Where it can be hovered, pressed and clicked: a little beyond its edge, so that a lit chip, which is drawn
    /// larger, answers wherever it is seen.
    QRectF outer() const { return inner().adjusted(-3, -3, 3, 3); }
    QRectF inner() const;
    /// Whether a press at `point` is for the remove button.
    bool isOnRemove(const QPointF& point) const;
    Hit removeHit();
    /// What lies on the rest of the chip, which is over `below`.
    Hit hit(Hit below);

    /// When it looks different next although nothing is animated: Clock::uptime(), or infinity.
    double nextFrame() const;
    void compose(DisplayList& list) const;

 private:
    struct Look;

    const HeldTimer* timer() const { return std::get_if<HeldTimer>(&thing_); }
    std::function<QList<MenuItem>()> menu() const;
    bool removeShown() const { return hover_ || hold_ || context_.ports.showX; }
    void updateRemove(const std::optional<Animation>& how);
    void findPicture();
    /// The last whole second since the chip was made: its countdown changes only then.
    double lastTick() const;
    QString countdown() const;
    Look look() const;
    static void drawGlyph(Canvas& canvas, const Look& look, const QImage& picture);

    int number_;
    HeldThing thing_;
    const ViewContext& context_;
    double made_;  // Clock::uptime()

    QString caption_;
    QImage picture_;
    bool hover_ = false;
    TimerHandle hold_;  // for a moment after that, so that the remove button can be reached
    RemoveX remove_{context_.animations};
    Animated<QPointF> middle_;
    Animated<double> presence_{context_.animations, 0, 0.002};
    Animated<double> glow_{context_.animations, 0, 0.002};  // 1 under the pointer
    Lifetime lifetime_;
};
