#pragma once

#include <QPointF>

#include "motion/Animated.h"
#include "views/DisplayList.h"

/// The small round button in a chip's corner that removes it. Main thread only.
class RemoveX {
 public:
    static constexpr double kSize = 16;   ///< diameter in points
    static constexpr double kReach = 14;  ///< how far a press may move, in points, and still count (see Hit::tapReach)

    /// Whether `point`, relative to the button's centre, is on the button.
    static bool hit(const QPointF& point);

    explicit RemoveX(Animations& animations) : animations_(animations) {}

    void press(bool pressed, double now);
    /// Shows or hides it with `how`, or at once.
    void show(bool shown, const std::optional<Animation>& how, double now) { opacity_.aim(shown ? 1 : 0, how, now); }

    /// Adds the button around the origin.
    void compose(DisplayList& list, int id, double now) const;

 private:
    Animations& animations_;
    Animated<double> opacity_{animations_, 0, 0.002};
    Animated<double> pressed_{animations_, 0, 0.002};  // 1 while down
};
