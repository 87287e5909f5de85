#pragma once

#include <algorithm>
#include <limits>

/// A group of Animated values: knows whether any of them is moving. Each value reports its movements to the group that
/// it was constructed with. Must outlive its values. Main thread only.
class Animations {
 public:
    /// A movement has started that ends at `end` (Clock::uptime()).
    void started(double end) { end_ = std::max(end_, end); }
    bool moving(double now) const { return now < end_; }

 private:
    double end_ = -std::numeric_limits<double>::infinity();  // of the movement that lasts longest
};
