#pragma once

#include <QPointF>

#include "motion/Animated.h"
#include "views/DisplayList.h"

/// The small round button in a chip's corner that takes it off the shelf. Main thread only.
class RemoveX {
 public:
    static constexpr double size = 16;  ///< points across

    /// Whether a press at `point`, relative to the button's middle, is on it.
    static bool hit(const QPointF& point);
    /// Whether a press that was released `way` points from where it began still counts.
    static bool meant(const QPointF& way);

    bool down() const { return down_; }
    void press(double now);
    void release(double now);
    /// Shows it or not: with `how`, or at once.
    void show(bool shown, const std::optional<Animation>& how, double now) { opacity_.aim(shown ? 1 : 0, how, now); }

    bool moving(double now) const { return opacity_.moving(now) || pressed_.moving(now); }
    /// Adds the button around the origin.
    void compose(DisplayList& list, int id, double now) const;

 private:
    bool down_ = false;
    Animated<double> opacity_{0, 0.002};
    Animated<double> pressed_{0, 0.002};  // 1 while down
};
