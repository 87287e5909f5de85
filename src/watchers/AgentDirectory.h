#pragma once

#include <QString>
#include <QStringList>

#include "platform/Descriptor.h"

/// The directory in which a companion tool describes its agents. It is untrusted, since it lies in a world-writable
/// place: the directory and its files count only if the user owns them, because they decide which window is brought
/// forward. Nothing in it can block the reader or exhaust memory: only regular files count, links are not followed, and
/// reads are bounded. A snapshot; any thread, one at a time.
class AgentDirectory {
 public:
    /// Opens the directory. One that cannot be opened, is a link, or has another owner counts as empty.
    explicit AgentDirectory(const QString& path);

    /// The names of the user's regular files in it, sorted; only the first few thousand entries are listed.
    const QStringList& entries() const { return entries_; }
    /// The first 8 KiB of the text of entry `name`; empty if there is no such entry, it is not UTF-8, or 1 MiB in all
    /// has been read already.
    QString text(const QString& name);

 private:
    Descriptor directory_;
    qsizetype left_;  // bytes that may still be read
    QStringList entries_;
};
