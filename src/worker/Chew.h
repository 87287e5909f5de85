#pragma once

#include <QByteArray>

#include "worker/Result.h"

enum class ChewMode { jpeg, png, smaller };

/// Converts the image at `source` into a new file beside it, or in `fallbackFolder` where its folder cannot be written,
/// and gives the new file's path. Paths are absolute and may hold any bytes. No existing file is touched.
///
/// Failures: 1 the image cannot be opened, 2 the new file cannot be made, 3 it cannot be written to its end.
Result<QByteArray> chew(const QByteArray& source, ChewMode mode, const QByteArray& fallbackFolder);

/// The folder that chew() will write into: the source's own or, where no new file can be made there, `fallbackFolder`,
/// which is then made if it is missing.
QByteArray resultFolder(const QByteArray& source, const QByteArray& fallbackFolder);
