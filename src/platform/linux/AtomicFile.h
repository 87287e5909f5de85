#pragma once

#include <QByteArray>
#include <QString>
#include <optional>

#include "platform/Descriptor.h"

/// A file that is read and replaced as a whole, by one program at a time. One thread at a time; everything except the
/// destructor may block on the disk.
class AtomicFile {
 public:
    /// Resolves `path` if it is a symbolic link, so that the link is preserved.
    explicit AtomicFile(const QString& path);
    ~AtomicFile();
    AtomicFile(const AtomicFile&) = delete;
    AtomicFile& operator=(const AtomicFile&) = delete;

    /// Locks the file for the lifetime of this object, and removes temporary files of processes that died while
    /// writing. False if another program has the lock; true, without a lock, if the file system does not support locks.
    bool lock();

    /// The contents; absent if there is no such regular file, it is larger than `maxSize` bytes, or it cannot be read.
    /// The next replace() moves a file that exists but could not be read aside, so that it is not lost.
    std::optional<QByteArray> read(qint64 maxSize);

    /// Atomically and durably replaces the file with one that has `contents` and is readable by its owner only. Creates
    /// missing folders. False on failure.
    bool replace(const QByteArray& contents);

 private:
    bool writeTemporary(const QByteArray& name, const QByteArray& contents) const;
    bool moveAside() const;
    void removeLeftovers() const;

    QByteArray path_, folder_;
    Descriptor lock_;
    bool keepAside_ = false;
};
