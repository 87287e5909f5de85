#pragma once

#include <QImage>
#include <QString>

#include "platform/Lifetime.h"
#include "views/RemoveX.h"
#include "views/View.h"

/// A held thing on the shelf: a glyph above a caption, highlighted under the pointer, with a remove button in its
/// corner. In the shelf's coordinates. Main thread only; the references must outlive it.
class Chip {
 public:
    static constexpr double kWidth = 50;   ///< a 42 point caption with 4 on either side
    static constexpr double kHeight = 54;  ///< a 30 point glyph, 3 points, a 9 point caption, 6 above and below

    /// `number` is unique among all chips ever made; `middle` is the chip's centre.
    Chip(int number, HeldThing thing, const QPointF& middle, const ViewContext& context);

    const HeldThing& thing() const { return thing_; }
    /// Updates the state of the same thing: a timer that has rung.
    void setThing(const HeldThing& thing) { thing_ = thing; }
    void moveTo(const QPointF& middle, const std::optional<Animation>& how) {
        middle_.aim(middle, how, context_.now());
    }
    /// Fades it in or out.
    void show(bool shown, const std::optional<Animation>& how) { presence_.aim(shown ? 1 : 0, how, context_.now()); }
    bool shown() const { return presence_.target() == 1; }
    /// Whether it has faded out completely.
    bool gone() const { return !shown() && !presence_.moving(context_.now()); }

    void setHover(bool hover);
    /// The area that reacts to the pointer: slightly larger than the chip, since a hovered chip is drawn larger.
    QRectF outer() const { return inner().adjusted(-3, -3, 3, 3); }
    QRectF inner() const;
    /// Whether `point` is on the remove button.
    bool isOnRemove(const QPointF& point) const;
    Hit removeHit();
    /// The hit anywhere else on the chip; `below` is what lies under it.
    Hit hit(Hit below);

    /// See View.
    double nextFrame() const;
    void compose(DisplayList& list) const;

 private:
    struct Look;

    const HeldTimer* timer() const { return std::get_if<HeldTimer>(&thing_); }
    std::function<QList<MenuItem>()> menu() const;
    bool removeShown() const { return hover_ || hold_ || context_.ports.showX; }
    void updateRemove(const std::optional<Animation>& how);
    void findPicture();
    /// When the countdown last changed: it does so at whole seconds since the chip was made.
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
    TimerHandle hold_;  // shows the remove button a little longer, so that it can be reached
    RemoveX remove_{context_.animations};
    Animated<QPointF> middle_;
    Animated<double> presence_{context_.animations, 0, 0.002};
    Animated<double> glow_{context_.animations, 0, 0.002};  // 1 under the pointer
    Lifetime lifetime_;
};
