#pragma once

#include <QByteArray>
#include <optional>

#include "worker/NewFile.h"
#include "worker/Result.h"

enum class ChewMode { jpeg, png, smaller };

/// The file to chew `source` into: in its own folder or, where no new file can be made there, in `fallbackFolder`,
/// which is then made if it is missing. Absent when neither will do. Paths are absolute and may hold any bytes.
std::optional<NewFile> newResult(const QByteArray& source, const QByteArray& fallbackFolder);

/// Converts the image at `source` into this file, names it after its source, and gives its path. No existing file is
/// touched.
///
/// Failures: 1 the image cannot be opened, 2 there is no file, 3 it cannot be written to its end.
Result<QByteArray> chew(const QByteArray& source, ChewMode mode, std::optional<NewFile> file);
