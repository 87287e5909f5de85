#pragma once

#include <QByteArray>
#include <functional>
#include <list>
#include <utility>

#include "platform/BackgroundJobs.h"

/// Puts questions to disks so that one that does not answer keeps few others waiting: one question at a time goes to a
/// folder, three to a mounted file system, kMaxThreads in all; the others queue up here. Main thread only.
class DiskLanes {
 public:
    static constexpr int kMaxThreads = 16;

    /// `queue` should have as many threads. Both must outlive the object, and `loop` the queue.
    DiskLanes(BackgroundQueue& queue, MainLoop& loop) : jobs_(queue, loop) {}

    /// Runs `job`, which is about the file at `path`, on the queue and hands what it returns to `then` on the main
    /// thread, unless this object is gone by then.
    template <class Job, class Then>
    void ask(const QByteArray& path, Job job, Then then) {
        enqueue(path, [this, job = std::move(job), then = std::move(then)](Place place) {
            jobs_.run(job, [this, place, then](auto answer) mutable {
                running_.erase(place);
                startWhatMay();
                then(std::move(answer));
            });
        });
    }

 private:
    struct Question;
    using Place = std::list<Question>::iterator;
    struct Question {
        QByteArray folder, mount;
        std::function<void(Place)> start;  ///< given where it stands among those that are running
    };

    void enqueue(const QByteArray& path, std::function<void(Place)> start);
    bool mayStart(const Question& question) const;
    void startWhatMay();

    std::list<Question> waiting_, running_;
    BackgroundJobs jobs_;
};
