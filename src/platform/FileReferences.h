#pragma once

#include <QByteArray>
#include <QUrl>
#include <functional>
#include <optional>

/// Turns files into bytes that can be stored and back. Main thread only; disks are asked elsewhere. The callbacks run
/// on the main thread, and not after the end of this object.
class FileReferences {
 public:
    virtual ~FileReferences() = default;

    /// A storable reference to `file` that is told from its name alone; absent for what is not a local file with an
    /// absolute path.
    virtual std::optional<QByteArray> plain(const QUrl& file) const = 0;
    /// Calls `done` with a reference that outlives a renaming of `file`, as soon as its disk has answered: never, if
    /// the disk does not. Absent when there is no such file.
    virtual void bookmark(const QUrl& file, std::function<void(const std::optional<QByteArray>&)> done) = 0;
    /// Calls `done` with the file that `bookmark` refers to; absent when the bytes are not a reference or no such file
    /// exists. A disk that does not answer within a second counts as holding the file, so that a slow one loses
    /// nothing.
    virtual void resolve(const QByteArray& bookmark, std::function<void(const std::optional<QUrl>&)> done) = 0;
};
