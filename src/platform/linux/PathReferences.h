#pragma once

#include "platform/FileReferences.h"
#include "platform/linux/DiskLanes.h"

/// References of the form "DEVICE:INODE:BIRTH:/path", with the file's identity in decimal, or the path alone if the
/// identity is unknown. A file is looked up by its path and then, if there is nothing, by its identity in the same
/// folder. Main thread only; the queue and the loop must outlive the object, and `loop` the queue.
class PathReferences : public FileReferences {
 public:
    /// `queue` should have DiskLanes::kMaxThreads threads.
    PathReferences(BackgroundQueue& queue, MainLoop& loop) : loop_(loop), lanes_(queue, loop) {}

    std::optional<QByteArray> plain(const QUrl& file) const override;
    void bookmark(const QUrl& file, std::function<void(const std::optional<QByteArray>&)> done) override;
    void resolve(const QByteArray& bookmark, std::function<void(const std::optional<QUrl>&)> done) override;

 private:
    MainLoop& loop_;
    DiskLanes lanes_;
    Lifetime lifetime_;
};
