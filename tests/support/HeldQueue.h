#pragma once

#include <utility>
#include <vector>

#include "platform/BackgroundQueue.h"

/// A queue that does nothing until it is told to, and then on the caller's thread.
class HeldQueue : public BackgroundQueue {
 public:
    void run(std::function<void()> job) override { jobs.push_back(std::move(job)); }
    void work() {
        for (const auto& job : std::exchange(jobs, {})) job();
    }
    std::vector<std::function<void()>> jobs;
};
