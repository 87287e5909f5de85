#pragma once

#include <QByteArray>
#include <QString>
#include <optional>

#include "platform/Descriptor.h"

/// A file that is read and replaced whole, by one program at a time. One thread at a time; all but the destructor may
/// wait for the disk.
class AtomicFile {
 public:
    /// Follows `path` if it is a symbolic link, so that a link stays one.
    explicit AtomicFile(const QString& path);
    ~AtomicFile();
    AtomicFile(const AtomicFile&) = delete;
    AtomicFile& operator=(const AtomicFile&) = delete;

    /// Keeps the file for this object, for as long as it lives, with a lock that ends with the process, and removes
    /// what processes left behind that died while they wrote. False if another program keeps the file. Where no lock
    /// can be had, nobody is kept out.
    bool keep();

    /// The contents; absent when there is no such regular file, or it is larger than `maxSize` bytes, or cannot be
    /// read. A file that is there and could not be read so is moved aside by the next replace(), not lost.
    std::optional<QByteArray> read(qint64 maxSize);

    /// Replaces the file by one with `contents`, readable by its owner only: whenever the machine stops, the old or the
    /// new contents are there. Folders are made when missing. False, and nothing changed, if that is impossible.
    bool replace(const QByteArray& contents);

 private:
    bool writeTemporary(const QByteArray& name, const QByteArray& contents) const;
    bool moveAside() const;
    void removeLeftovers() const;

    QByteArray path_, folder_;
    Descriptor lock_;
    bool keepAside_ = false;
};
