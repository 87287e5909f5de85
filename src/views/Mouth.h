#pragma once

#include <optional>

#include "motion/Animated.h"
#include "views/DisplayList.h"

/// The creature's mouth. It is drawn below the origin of its frame of reference, the bottom centre of the eye row.
class Mouth {
 public:
    enum class State {
        resting,
        covered,  ///< not to be seen behind something else
        munching,
        yawning,
        eating,
        full,  ///< shut over something, with stuffed cheeks
        gulping
    };

    explicit Mouth(Animations& animations) : animations_(animations) {}

    /// `how` moves whatever is not bound to eating or yawning by an animation of its own.
    void aim(State state, const std::optional<Animation>& how, double now);
    /// While it munches: seconds of wall time until the next bite, else infinity.
    double untilNextChew(double wallTime) const;
    /// Whether a bite is going on at this wall time (seconds since the reference date).
    bool chewing(double wallTime) const;

    void compose(DisplayList& list, double now, double wallTime) const;

 private:
    struct Look;
    Look look(double now, double wallTime) const;
    static void draw(Canvas& canvas, const Look& look);
    static void drawTongue(Canvas& canvas, const Look& look, const QPointF& center);
    static void drawCheeks(Canvas& canvas, const Look& look);

    Animations& animations_;
    State state_ = State::resting;
    Animated<double> width_{animations_, 14}, height_{animations_, 2.4}, opacity_{animations_, 0.55, 0.002};
    Animated<double> space_{animations_, 7}, shadow_{animations_, 0, 0.002}, gradientEnd_{animations_, 1};
    Animated<double> rim_{animations_, 0, 0.002}, glow_{animations_, 0, 0.002};
    Animated<double> tongueWidth_{animations_, 0}, tongueHeight_{animations_, 0}, tongueOpacity_{animations_, 0, 0.002};
    Animated<double> cheeks_{animations_, 0, 0.002};  // stuffed
};
