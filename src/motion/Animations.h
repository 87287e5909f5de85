#pragma once

#include <algorithm>
#include <limits>

/// Knows whether any of the values that belong to it moves. Each Animated is given one when it is made and tells it of
/// every movement, so nobody lists them. Must outlive them. Main thread only.
class Animations {
 public:
    /// A movement has begun that ends at `end`, by Clock::uptime().
    void started(double end) { end_ = std::max(end_, end); }
    bool moving(double now) const { return now < end_; }

 private:
    double end_ = -std::numeric_limits<double>::infinity();  // of the movement that lasts longest
};
