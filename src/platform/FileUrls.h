#pragma once

#include <QByteArray>
#include <QUrl>

// File names are bytes, and not always UTF-8. A file URL keeps them, percent-encoded; QUrl::toLocalFile() does not.

/// The path of `file`, byte for byte; empty for what is not a file on this machine.
inline QByteArray pathOf(const QUrl& file) {
    if (!file.isLocalFile() || !file.host().isEmpty()) return {};
    return QByteArray::fromPercentEncoding(file.path(QUrl::FullyEncoded).toLatin1());
}

/// The file URL of an absolute path; equal for equal paths. Several leading slashes become one, since in a URL "//"
/// would start a host name.
inline QUrl fileUrl(QByteArray path) {
    while (path.startsWith("//")) path.remove(0, 1);
    const QString text = QString::fromUtf8(path);
    if (text.toUtf8() == path) return QUrl::fromLocalFile(text);
    return QUrl::fromEncoded("file://" + path.toPercentEncoding("/"));
}
