#pragma once

#include <QPointF>
#include <optional>

#include "motion/Animated.h"
#include "views/DisplayList.h"

/// One eye: where it looks, how far its lid is down, and whether it is squeezed shut for the camera. It is drawn around
/// the origin of its frame of reference.
class Eye {
 public:
    struct Pose {
        double diameter = 17;
        double pupil = 8;
        double lid = 0.12;  ///< 0 uncovers the eye, 1 covers it
        QPointF gaze;       ///< offset of the pupil
        bool shut = false;  ///< shows the closed-eye arc instead
    };

    void aim(const Pose& pose, const std::optional<Animation>& how, double now);
    bool moving(double now) const;
    void compose(DisplayList& list, int id, double now) const;

 private:
    Animated<double> diameter_{17};
    Animated<double> pupil_{8};
    Animated<double> lid_{0.12, 0.002};
    Animated<QPointF> gaze_{QPointF()};
    Animated<double> shut_{0, 0.002};
};
