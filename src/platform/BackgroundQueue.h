#pragma once

#include <functional>

/// Runs work away from the main thread; results come back through MainLoop::post. Jobs that have not begun when the
/// queue is destroyed still run, and the destructor waits for them.
class BackgroundQueue {
 public:
    virtual ~BackgroundQueue() = default;

    /// Any thread. Jobs may run side by side and in any order.
    virtual void run(std::function<void()> job) = 0;
};

/// A BackgroundQueue that runs one job after the other, in the order in which they came.
class SerialQueue : public BackgroundQueue {};
