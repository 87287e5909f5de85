#pragma once

#include <QByteArray>
#include <QUrl>
#include <optional>

/// Turns files into bytes that can be stored and back. Main thread only.
class FileReferences {
 public:
    virtual ~FileReferences() = default;

    /// A storable reference to `file`; absent for what is no local file with an absolute path.
    virtual std::optional<QByteArray> bookmark(const QUrl& file) const = 0;
    /// The file that `bookmark` refers to; absent when the bytes are no reference or no such file exists. A disk that
    /// does not answer within a moment counts as holding the file, so that a slow one loses nothing.
    virtual std::optional<QUrl> resolve(const QByteArray& bookmark) const = 0;
};
