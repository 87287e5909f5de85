#pragma once

#include <functional>

#include "creature/NotchModel.h"
#include "platform/BackgroundJobs.h"

/// Runs one background job at a time while the creature chews. Main thread only; the references must outlive it.
class ChewJobs {
 public:
    /// Applies a job's result on the main thread; returns whether the job succeeded.
    using Outcome = std::function<bool()>;

    ChewJobs(NotchModel& model, MainLoop& loop, BackgroundQueue& queue);

    /// Runs `job` on the queue, and a moment later the outcome that it returned on the main thread. Does nothing while
    /// another job is running. A job that fails, or takes more than 80 s, only makes the creature look worried.
    void start(std::function<Outcome()> job);

 private:
    void end(const Outcome& outcome);

    NotchModel& model_;
    MainLoop& loop_;
    BackgroundJobs jobs_;
    TimerHandle end_;
};
