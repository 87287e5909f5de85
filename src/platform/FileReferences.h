#pragma once

#include <QByteArray>
#include <QUrl>
#include <functional>
#include <optional>

/// Turns files into bytes that can be stored, and back. Main thread only; disk access happens elsewhere. The callbacks
/// run on the main thread, and never after this object is destroyed.
class FileReferences {
 public:
    virtual ~FileReferences() = default;

    /// A storable reference to `file` by its path alone, without disk access; absent for what is not a local file with
    /// an absolute path.
    virtual std::optional<QByteArray> plain(const QUrl& file) const = 0;
    /// Calls `done` with a reference that survives renaming `file`, once its disk has answered; never, if the disk
    /// hangs. Absent if there is no such file.
    virtual void bookmark(const QUrl& file, std::function<void(const std::optional<QByteArray>&)> done) = 0;
    /// Calls `done` with the file that `bookmark` refers to; absent if the bytes are not a reference or the file does
    /// not exist. If the disk does not answer within a second, the file is assumed to exist, so that a slow disk loses
    /// nothing.
    virtual void resolve(const QByteArray& bookmark, std::function<void(const std::optional<QUrl>&)> done) = 0;
};
