#pragma once

#include <functional>

#include "creature/NotchModel.h"
#include "platform/BackgroundJobs.h"

/// The creature's chewing on one thing at a time: a job in the background, with the face that belongs to it. Main
/// thread only; the references must outlive it.
class ChewJobs {
 public:
    /// What is done with a job's result in the end; tells whether it went well.
    using Outcome = std::function<bool()>;

    ChewJobs(NotchModel& model, MainLoop& loop, BackgroundQueue& queue);

    /// Runs `job` on the queue and what it returned on the main thread, a moment after. Does nothing while another is
    /// under way. One that fails, or of which nothing is heard in 80 s, only makes the creature look worried.
    void start(std::function<Outcome()> job);

 private:
    void end(const Outcome& outcome);

    NotchModel& model_;
    MainLoop& loop_;
    BackgroundJobs jobs_;
    TimerHandle end_;
};
