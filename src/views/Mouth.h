#pragma once

#include <array>
#include <optional>
#include <vector>

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

    explicit Mouth(Animations& animations);

    /// `how` moves whatever is not bound to eating or yawning by an animation of its own.
    void aim(State state, const std::optional<Animation>& how, double now);
    /// While it munches: seconds of wall time until the next bite, else infinity.
    double untilNextChew(double wallTime) const;
    /// Whether a bite is going on at this wall time (seconds since the reference date).
    bool chewing(double wallTime) const;

    void compose(DisplayList& list, double now, double wallTime) const;

 private:
    struct Look;
    static const std::array<double Look::*, 12> kMoving;  // the numbers of a look that are animated
    static const std::array<Look, 7> kLooks;

    Look look(double now, double wallTime) const;
    static void draw(Canvas& canvas, const Look& look);
    static void drawTongue(Canvas& canvas, const Look& look, const QPointF& center);
    static void drawCheeks(Canvas& canvas, const Look& look);

    State state_ = State::resting;
    std::vector<Animated<double>> values_;  // of kMoving
};
