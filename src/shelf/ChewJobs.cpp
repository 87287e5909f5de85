#include "shelf/ChewJobs.h"

#include <atomic>

namespace {

constexpr double kAfterTaste = 1.1;  // seconds that the creature goes on chewing when the job is done
constexpr double kPatience = 80;     // seconds; the worker has a minute, and the disk of a file may never answer

bool failed() {
    return false;
}

}  // namespace

ChewJobs::ChewJobs(NotchModel& model, MainLoop& loop, BackgroundQueue& queue)
    : model_(model), loop_(loop), jobs_(queue, loop) {}

void ChewJobs::start(std::function<Outcome()> job) {
    if (model_.chewing) return;
    model_.withAnimation(Animation::easeInOut(0.3), [this] { model_.chewing = true; });
    const auto isGivenUp = std::make_shared<std::atomic_bool>(false);
    end_ = loop_.after(kPatience, [this, isGivenUp] {
        *isGivenUp = true;
        end(failed);
    });
    // When disks that hang hold up all threads, it may begin when nobody waits for it any more.
    jobs_.run([isGivenUp, job = std::move(job)] { return *isGivenUp ? Outcome(failed) : job(); },
              [this, isGivenUp](const Outcome& outcome) {
                  if (!*isGivenUp) end_ = loop_.after(kAfterTaste, [this, outcome] { end(outcome); });
              });
}

void ChewJobs::end(const Outcome& outcome) {
    bool isWell = false;
    model_.withAnimation(Animation::spring(0.32, 0.8), [&] {
        model_.chewing = false;
        isWell = outcome();
    });
    if (!isWell) ++model_.worryCount;
}
