#pragma once

#include <QRectF>
#include <list>
#include <optional>

#include "motion/Animated.h"
#include "views/DisplayList.h"

/// A small capsule with a label. Changes of its position, size and label are animated together. Main thread only.
class Pill {
 public:
    struct Look {
        QString text;
        TextStyle style{0};
        double textOpacity = 0, fillOpacity = 0;
        QRectF frame;
    };

    explicit Pill(Animations& animations) : animations_(animations) {}

    /// Changes to `look`; without one, fades out in place.
    void show(const std::optional<Look>& look, const std::optional<Animation>& how, double now);
    /// Whether `point` is on the pill as it is drawn now.
    bool contains(const QPointF& point, double now) const;
    void compose(DisplayList& list, double now) const;

 private:
    struct Label {
        QString text;
        TextStyle style;
        double opacity;
        double width;  // of the pill around it
        int number;
        Animated<double> presence;
    };
    QRectF frame(double now) const;

    Animations& animations_;
    Animated<double> presence_{animations_, 0, 0.002}, fill_{animations_, 0, 0.002};
    Animated<QPointF> middle_{animations_, QPointF()}, size_{animations_, QPointF()};
    std::list<Label> labels_;  // possibly one that fades out, then the current one
};
