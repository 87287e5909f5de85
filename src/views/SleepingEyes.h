#pragma once

#include <optional>

#include "motion/Animated.h"
#include "views/DisplayList.h"
#include "views/FaceGeometry.h"

/// The closed eyes of a sleeping creature, and the "z" that rises between them while it is attended to. Main thread
/// only.
class SleepingEyes {
 public:
    explicit SleepingEyes(Animations& animations) : animations_(animations) {}

    void aim(const FaceGeometry& face, bool dreaming, const std::optional<Animation>& how, double now);
    /// Centred horizontally at the origin, with `gap` between the eyes; `wallTime`, in seconds, moves the "z".
    void compose(DisplayList& list, double top, double gap, double now, double wallTime) const;

 private:
    Animations& animations_;
    Animated<double> width_{animations_, 0}, height_{animations_, 0}, droop_{animations_, 0};
    Animated<double> zzz_{animations_, 0, 0.002};
};
