#pragma once

#include <array>
#include <optional>
#include <vector>

#include "motion/Animated.h"
#include "views/DisplayList.h"

/// The creature's mouth. The origin is the bottom centre of the eyes.
class Mouth {
 public:
    enum class State {
        resting,
        covered,  ///< hidden behind the badge
        munching,
        yawning,
        eating,
        full,  ///< shut over something, with stuffed cheeks
        gulping
    };

    explicit Mouth(Animations& animations);

    /// Moves to `state` with `how`; eating, yawning and swallowing have their own curves.
    void aim(State state, const std::optional<Animation>& how, double now);
    /// Seconds until the next bite while munching; otherwise infinity.
    double untilNextChew(double wallTime) const;
    /// Whether it is in the middle of a bite at this wall time (seconds, see Date).
    bool chewing(double wallTime) const;

    void compose(DisplayList& list, double now, double wallTime) const;

 private:
    struct Look;
    static const std::array<double Look::*, 12> kAnimated;  // the numbers of a look that are animated
    static const std::array<Look, 7> kLooks;

    Look look(double now, double wallTime) const;
    static void draw(Canvas& canvas, const Look& look);
    static void drawTongue(Canvas& canvas, const Look& look, const QPointF& center);
    static void drawCheeks(Canvas& canvas, const Look& look);

    State state_ = State::resting;
    std::vector<Animated<double>> values_;  // of kAnimated
};
