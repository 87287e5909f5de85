#pragma once

#include <optional>

#include "motion/Animated.h"
#include "views/DisplayList.h"

/// The number of held things, shown in place of the mouth. Main thread only.
class Badge {
 public:
    explicit Badge(Animations& animations) : animations_(animations) {}

    /// While it fades out it keeps its last number.
    void show(bool shown, int count, const std::optional<Animation>& how, double now);
    bool shown() const { return presence_.target() == 1; }
    void compose(DisplayList& list, double top, double now) const;

 private:
    Animations& animations_;
    Animated<double> presence_{animations_, 0, 0.002};
    int count_ = 0;
    double width_ = 0;
};
