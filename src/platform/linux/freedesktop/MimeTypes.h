#pragma once

#include <QByteArray>
#include <QMimeType>

/// What kind of file is at `path`, by its name and, where that does not tell, its beginning. Invalid if there is none.
/// Reads the disk: only away from the main thread.
QMimeType mimeTypeOf(const QByteArray& path);
