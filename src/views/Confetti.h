#pragma once

#include <QColor>
#include <QPointF>
#include <functional>
#include <vector>

#include "views/View.h"

/// A ring of sparks that flies apart and fades, around the top centre of the panel. It ignores the pointer.
class Confetti {
 public:
    /// `random` gives uniformly distributed numbers in [0, 1).
    Confetti(const ViewContext& context, std::function<double()> random)
        : context_(context), random_(std::move(random)) {}

    /// Starts a new burst; it starts flying one turn of the main loop later.
    void burst();
    void compose(DisplayList& list, double now) const;

 private:
    struct Spark {
        QPointF flight;  // offset at the end of its flight
        QColor color;
        double size;  // diameter
    };
    const ViewContext& context_;
    std::function<double()> random_;
    std::vector<Spark> sparks_;
    int burst_ = 0;  // number of bursts so far
    Animated<double> flight_{context_.animations, 0, 0.001};
    TimerHandle launch_;
};
