#pragma once

#include <QByteArray>
#include <QString>
#include <QUrl>
#include <optional>

#include "platform/Descriptor.h"

// New files in a folder. A name that is taken gets a counter; no existing file is touched, and a file appears only once
// it is whole. These wait for the disk, so they are called away from the main thread.

/// Opens `folder`, making it and those above it when they are missing. Without a descriptor if that fails.
Descriptor openFolder(const QUrl& folder);
/// A name that nothing else has, for what is not to be seen yet.
QByteArray newHiddenName(const QByteArray& prefix);

/// Writes `contents` into `folder` as `name`. Absent, with nothing left behind, if that fails.
std::optional<QUrl> writeNewFile(const QUrl& folder, const QString& name, const QByteArray& contents);

/// Moves the file or folder `name`, as it stands in the folder `from`, into the folder `to` as `wanted`, or as that
/// with a counter. Gives the name that it has now; absent if it cannot be moved.
std::optional<QByteArray> moveUnderFreeName(int from, const QByteArray& name, int to, const QString& wanted);

/// `name` as the name of one visible file, whatever it holds: without folders and control characters, never empty, and
/// short enough for any file system and a counter.
QString sanitizedFileName(const QByteArray& name);
