#pragma once

#include <functional>

/// Runs jobs away from the main thread; results come back through MainLoop::post. The destructor runs and waits for all
/// jobs that are still queued.
class BackgroundQueue {
 public:
    virtual ~BackgroundQueue() = default;

    /// Any thread. Jobs may run concurrently and in any order.
    virtual void run(std::function<void()> job) = 0;
};

/// A BackgroundQueue that runs its jobs one at a time, in order.
class SerialQueue : public BackgroundQueue {};
