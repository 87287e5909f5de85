#pragma once

#include <QByteArray>
#include <QString>
#include <QStringList>

#include "platform/Descriptor.h"

/// The directory in which a companion tool describes its agents, read with care: it lies where everybody may write, so
/// the directory and what is in it count only when they belong to the user, who alone may say what is brought forward.
/// Nothing in it can block the reader or take much memory: only regular files count, links are not followed, and what
/// is read is bounded. One moment's view; any thread, one at a time.
class AgentDirectory {
 public:
    /// Opens the directory. One that cannot be opened, or is a link or somebody else's, is like an empty one.
    explicit AgentDirectory(const QString& path);

    /// The names of the user's regular files in it, sorted; beyond a few thousand entries the rest is left out.
    const QStringList& entries() const { return entries_; }
    /// The beginning of the text of entry `name`, up to 8 KiB; empty when there is none, it is not UTF-8, or a mebibyte
    /// was read of the others before.
    QString text(const QString& name);

 private:
    Descriptor directory_;
    qsizetype left_;  // bytes that may still be read
    QStringList entries_;
};
