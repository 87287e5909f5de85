#pragma once

#include <QByteArray>
#include <QString>
#include <QStringList>

/// The directory in which a companion tool describes its agents, read with care: it belongs to whoever writes it.
/// Nothing in it can block the reader: only regular files are read, no more than 64 KiB of one, and links are not
/// followed. One moment's view; any thread.
class AgentDirectory {
 public:
    /// Opens the directory. One that cannot be opened is like an empty one.
    explicit AgentDirectory(const QString& path);
    ~AgentDirectory();
    AgentDirectory(const AgentDirectory&) = delete;
    AgentDirectory& operator=(const AgentDirectory&) = delete;

    /// The names of its entries, sorted; beyond a few thousand the rest is left out.
    QStringList entries() const { return entries_; }
    /// The text of entry `name`; empty when there is none, it is no regular file, or it is not UTF-8.
    QString text(const QString& name) const;

 private:
    int descriptor_;
    QStringList entries_;
};
