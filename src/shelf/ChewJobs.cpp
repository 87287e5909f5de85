#include "shelf/ChewJobs.h"

#include <atomic>

namespace {

constexpr double kExtraChewing = 1.1;  // seconds of chewing after the job is done
constexpr double kTimeout = 80;        // seconds; the worker has 60, but a file's disk may never answer

bool failed() {
    return false;
}

}  // namespace

ChewJobs::ChewJobs(NotchModel& model, MainLoop& loop, BackgroundQueue& queue)
    : model_(model), loop_(loop), jobs_(queue, loop) {}

void ChewJobs::start(std::function<Outcome()> job) {
    if (model_.chewing) return;
    model_.withAnimation(Animation::easeInOut(0.3), [this] { model_.chewing = true; });
    const auto isAbandoned = std::make_shared<std::atomic_bool>(false);
    end_ = loop_.after(kTimeout, [this, isAbandoned] {
        *isAbandoned = true;
        end(failed);
    });
    // If hung disks block all threads, the job may only start after we have given up on it.
    jobs_.run([isAbandoned, job = std::move(job)] { return *isAbandoned ? Outcome(failed) : job(); },
              [this, isAbandoned](const Outcome& outcome) {
                  if (!*isAbandoned) end_ = loop_.after(kExtraChewing, [this, outcome] { end(outcome); });
              });
}

void ChewJobs::end(const Outcome& outcome) {
    bool succeeded = false;
    model_.withAnimation(Animation::spring(0.32, 0.8), [&] {
        model_.chewing = false;
        succeeded = outcome();
    });
    if (!succeeded) ++model_.worryCount;
}
