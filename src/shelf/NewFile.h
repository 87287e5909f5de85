#pragma once

#include <QByteArray>
#include <QString>
#include <QUrl>
#include <optional>

// New files in a folder. A name that is taken gets a counter; no existing file is touched, and a file appears only once
// it is whole. These wait for the disk, so they are called away from the main thread.

/// Writes `contents` into `folder` as `name`. Absent, with nothing left behind, if that fails.
std::optional<QUrl> writeNewFile(const QUrl& folder, const QString& name, const QByteArray& contents);

/// Makes an empty hidden folder inside `folder`, in which another program may write, and removes those that have been
/// abandoned for a day. Absent if that fails.
std::optional<QUrl> makeInbox(const QUrl& folder);
/// Moves the regular file `name` out of the inbox into `folder`, and removes the inbox with what else is in it. Absent
/// if there is no such file, or the name is empty.
std::optional<QUrl> emptyInbox(const QUrl& inbox, const QString& name, const QUrl& folder);

/// `name` as the name of one visible file, whatever it holds: without folders and control characters, never empty, and
/// short enough for any file system and a counter.
QString sanitizedFileName(const QByteArray& name);
