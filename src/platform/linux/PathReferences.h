#pragma once

#include "platform/BackgroundQueue.h"
#include "platform/FileReferences.h"

/// References that are absolute paths. Main thread only; the queue must outlive the object.
class PathReferences : public FileReferences {
 public:
    /// Disks are asked on `queue`, and given a fifth of a second to answer; once one was too slow, the next questions
    /// get less, so that many files on it do not add up.
    explicit PathReferences(BackgroundQueue& queue) : queue_(queue) {}

    std::optional<QByteArray> bookmark(const QUrl& file) const override;
    std::optional<QUrl> resolve(const QByteArray& bookmark) const override;

 private:
    BackgroundQueue& queue_;
    mutable bool slow_ = false;  // a disk did not answer in time
};
