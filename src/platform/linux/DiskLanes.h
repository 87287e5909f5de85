#pragma once

#include <QByteArray>
#include <functional>
#include <memory>

#include "platform/BackgroundQueue.h"
#include "platform/MainLoop.h"

/// Puts questions to disks so that one that does not answer keeps few others waiting: one question at a time goes to a
/// folder, three to a mounted file system, kMostThreads in all; the others queue up here. Main thread only.
class DiskLanes {
 public:
    static constexpr int kMostThreads = 16;

    /// `queue` should have as many threads. Both must outlive the object, and `loop` the queue.
    DiskLanes(BackgroundQueue& queue, MainLoop& loop);
    ~DiskLanes();

    using Answer = std::function<void()>;
    /// Runs `question`, which is about the file at `path`, on the queue, and what it returns on the main thread unless
    /// this object is gone by then.
    void ask(const QByteArray& path, std::function<Answer()> question);

 private:
    struct Question {
        QByteArray folder, mount;
        std::function<Answer()> ask;
    };
    struct State;

    static void start(const std::shared_ptr<State>& state);

    std::shared_ptr<State> state_;
};
