#pragma once

#include <QColor>
#include <QPointF>
#include <functional>
#include <vector>

#include "motion/Animated.h"
#include "platform/MainLoop.h"
#include "views/DisplayList.h"

/// One speck of a burst.
struct Spark {
    QPointF flight;  ///< offset at the end of its way
    QColor color;
    double size;  ///< diameter
};

/// A ring of sparks that flies apart and fades. Drawn around the top centre of the panel; it never takes the pointer.
class Confetti {
 public:
    /// `random` gives uniformly distributed numbers in [0, 1).
    Confetti(MainLoop& loop, std::function<double()> random);

    /// Starts a burst over; `launched` is called when its flight has begun, one turn of the main loop later.
    void burst(const std::function<double()>& uptime, const std::function<void()>& launched);
    bool moving(double now) const { return flight_.moving(now); }
    void compose(DisplayList& list, double now) const;

 private:
    MainLoop& loop_;
    std::function<double()> random_;
    std::vector<Spark> sparks_;
    int burst_ = 0;  // counts them
    Animated<double> flight_{0, 0.001};
    TimerHandle launch_;
};
