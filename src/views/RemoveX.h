#pragma once

#include <QPointF>

#include "motion/Animated.h"
#include "views/DisplayList.h"

/// The small round button in a chip's corner that takes it off the shelf. Main thread only.
class RemoveX {
 public:
    static constexpr double size = 16;   ///< points across
    static constexpr double reach = 14;  ///< points to each side that a press may wander and still be meant

    /// Whether a press at `point`, relative to the button's middle, is on it.
    static bool hit(const QPointF& point);

    explicit RemoveX(Animations& animations) : animations_(animations) {}

    void press(bool pressed, double now);
    /// Shows it or not: with `how`, or at once.
    void show(bool shown, const std::optional<Animation>& how, double now) { opacity_.aim(shown ? 1 : 0, how, now); }

    /// Adds the button around the origin.
    void compose(DisplayList& list, int id, double now) const;

 private:
    Animations& animations_;
    Animated<double> opacity_{animations_, 0, 0.002};
    Animated<double> pressed_{animations_, 0, 0.002};  // 1 while down
};
