#pragma once

#include <QByteArray>
#include <QUrl>

// File names are bytes, and not always UTF-8. A file URL keeps them, percent-encoded; QUrl::toLocalFile() does not.

/// The path that `file` names, byte for byte; empty for what is no file on this machine.
inline QByteArray pathOf(const QUrl& file) {
    if (!file.isLocalFile() || !file.host().isEmpty()) return {};
    return QByteArray::fromPercentEncoding(file.path(QUrl::FullyEncoded).toLatin1());
}

/// The file URL of an absolute path.
inline QUrl fileUrl(const QByteArray& path) {
    return QUrl::fromEncoded("file://" + path.toPercentEncoding("/"));
}
