#pragma once

#include <QByteArray>
#include <functional>
#include <list>
#include <utility>

#include "platform/BackgroundJobs.h"

/// Limits concurrent disk requests, so that a hung disk delays few others: one request at a time per folder, three per
/// mounted file system, kMaxThreads in all. The others wait here. Main thread only.
class DiskLanes {
 public:
    static constexpr int kMaxThreads = 16;

    /// `queue` should have kMaxThreads threads. Both must outlive the object, and `loop` the queue.
    DiskLanes(BackgroundQueue& queue, MainLoop& loop) : jobs_(queue, loop) {}

    /// Runs `job`, which accesses the file at `path`, on the queue and passes its result to `then` on the main thread,
    /// unless this object is gone by then.
    template <class Job, class Then>
    void ask(const QByteArray& path, Job job, Then then) {
        enqueue(path, [this, job = std::move(job), then = std::move(then)](Place place) {
            jobs_.run(job, [this, place, then](auto answer) mutable {
                running_.erase(place);
                startWaiting();
                then(std::move(answer));
            });
        });
    }

 private:
    struct Request;
    using Place = std::list<Request>::iterator;
    struct Request {
        QByteArray folder, mount;
        std::function<void(Place)> start;  ///< receives its place in `running_`
    };

    void enqueue(const QByteArray& path, std::function<void(Place)> start);
    bool mayStart(const Request& request) const;
    void startWaiting();

    std::list<Request> waiting_, running_;
    BackgroundJobs jobs_;
};
