#pragma once

#include <QByteArray>
#include <QString>
#include <QUrl>
#include <optional>

#include "platform/Descriptor.h"

// New files in a folder. A name that is taken gets a counter; existing files are never touched, and a file appears only
// once it is complete. These block on the disk: call them away from the main thread.

/// Opens `folder`, creating it and its parents if necessary. An empty descriptor on failure.
Descriptor openFolder(const QUrl& folder);
/// A unique hidden name for a file that is not finished yet.
QByteArray newHiddenName(const QByteArray& prefix);

/// Writes `contents` into `folder` as `name`. Absent on failure, with nothing left behind.
std::optional<QUrl> writeNewFile(const QUrl& folder, const QString& name, const QByteArray& contents);

/// Moves the file or folder `name` from the folder `from` into the folder `to` as `wanted`, with a counter if that is
/// taken. Returns its new name; absent if it cannot be moved.
std::optional<QByteArray> moveUnderFreeName(int from, const QByteArray& name, int to, const QString& wanted);

/// Turns any bytes into the name of one visible file: without folders and control characters, never empty, and short
/// enough for any file system even with a counter.
QString sanitizedFileName(const QByteArray& name);
