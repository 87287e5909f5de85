#pragma once

#include <QByteArray>
#include <QMimeType>

/// The MIME type of the file at `path`, by its name and, if that is ambiguous, its contents. Invalid if there is no
/// file. Blocks on the disk: only away from the main thread.
QMimeType mimeTypeOf(const QByteArray& path);
