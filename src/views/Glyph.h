#pragma once

#include <optional>

#include "motion/Animated.h"
#include "views/DisplayList.h"
#include "views/StatusGlyph.h"

/// The small symbol beside the face. Main thread only.
class Glyph {
 public:
    explicit Glyph(Animations& animations) : opacity_(animations, 0, 0.002) {}

    /// While it fades out it keeps its last symbol.
    void show(const StatusGlyph& glyph, const std::optional<Animation>& how, double now);
    /// Near the right edge of the body.
    void compose(DisplayList& list, double right, double now) const;

 private:
    StatusGlyph glyph_;
    Animated<double> opacity_;
};
