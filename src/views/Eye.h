#pragma once

#include <QPointF>
#include <optional>

#include "motion/Animated.h"
#include "views/DisplayList.h"
#include "views/FaceGeometry.h"

/// One eye: where it looks, how far its lid is down, and whether it is squeezed shut. Centred at the origin.
class Eye {
 public:
    struct Pose {
        double diameter, pupil;
        double lid;         ///< 0 open, 1 closed
        QPointF gaze;       ///< offset of the pupil
        bool shut = false;  ///< shows the closed-eye arc instead
    };

    explicit Eye(Animations& animations) : animations_(animations) {}

    void aim(const Pose& pose, const std::optional<Animation>& how, double now);
    void compose(DisplayList& list, int id, double now) const;

 private:
    Animations& animations_;
    Animated<double> diameter_{animations_, FaceGeometry::resting.eye};
    Animated<double> pupil_{animations_, FaceGeometry::resting.pupil};
    Animated<double> lid_{animations_, 0.12, 0.002};
    Animated<QPointF> gaze_{animations_, QPointF()};
    Animated<double> shut_{animations_, 0, 0.002};
};
