#pragma once

#include <chrono>

#include "platform/BackgroundQueue.h"
#include "platform/FileReferences.h"

/// References that are a path and the identity of what it named: "DEVICE:INODE:BIRTH:/path", in decimal, or the path
/// alone where the identity could not be told in time. A file is looked for by its path; if nothing is there, by its
/// identity in the same folder. Main thread only; the queue must outlive the object.
class PathReferences : public FileReferences {
 public:
    /// Disks are asked on `queue`. A series of questions, however many, waits a fifth of a second for slow ones in all,
    /// and after that a millisecond for each.
    explicit PathReferences(BackgroundQueue& queue) : queue_(queue) {}

    std::optional<QByteArray> bookmark(const QUrl& file) const override;
    std::optional<QUrl> resolve(const QByteArray& bookmark) const override;

 private:
    using Clock = std::chrono::steady_clock;

    template <class Answer>
    std::optional<Answer> ask(std::function<Answer()> question) const;

    BackgroundQueue& queue_;
    mutable Clock::time_point patienceEnds_, lastAnswer_;  // of the present series of questions
};
