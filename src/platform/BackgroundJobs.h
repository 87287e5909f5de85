#pragma once

#include <memory>
#include <type_traits>
#include <utility>

#include "platform/BackgroundQueue.h"
#include "platform/Lifetime.h"
#include "platform/MainLoop.h"

/// Runs jobs of one owner away from the main thread. Their results come back to it, unless the owner is gone by then;
/// the jobs themselves always run to completion. Main thread only.
class BackgroundJobs {
 public:
    /// Both must outlive the jobs, not only their owner.
    BackgroundJobs(BackgroundQueue& queue, MainLoop& loop) : queue_(queue), loop_(loop) {}

    /// Runs `job` on the queue and hands what it returns to `then` on the main thread. The job must not touch its
    /// owner.
    template <class Job, class Then>
    void run(Job job, Then then) {
        queue_.run([&loop = loop_, job = std::move(job), then = lifetime_.guard(std::move(then))]() mutable {
            if constexpr (std::is_void_v<std::invoke_result_t<Job&>>) {
                job();
                loop.post(std::move(then));
            } else {
                // Shared, since a std::function must be copyable and a result, such as a descriptor, may not be.
                auto result = std::make_shared<std::invoke_result_t<Job&>>(job());
                loop.post([result, then = std::move(then)]() mutable { then(std::move(*result)); });
            }
        });
    }

 private:
    BackgroundQueue& queue_;
    MainLoop& loop_;
    Lifetime lifetime_;
};
