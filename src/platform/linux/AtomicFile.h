#pragma once

#include <QByteArray>
#include <QString>
#include <optional>

/// A file that is read and replaced whole. One thread at a time.
class AtomicFile {
 public:
    /// Follows `path` if it is a symbolic link, so that a link stays one.
    explicit AtomicFile(const QString& path);

    /// The contents; absent when there is no such regular file, or it is larger than `largest` bytes, or cannot be
    /// read. A file that is there and could not be read so is moved aside by the next replace(), not lost.
    std::optional<QByteArray> read(qint64 largest);

    /// Replaces the file by one with `contents`, readable by its owner only: whenever the machine stops, the old or the
    /// new contents are there. Folders are made when missing. False, and nothing changed, if that is impossible.
    bool replace(const QByteArray& contents);

 private:
    bool writeTemporary(const QByteArray& name, const QByteArray& contents) const;

    QByteArray path_;
    bool keepAside_ = false;
};
