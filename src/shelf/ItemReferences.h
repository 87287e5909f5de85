#pragma once

#include <QHash>
#include <QList>
#include <QUrl>
#include <functional>
#include <memory>
#include <optional>

#include "platform/Lifetime.h"

class FileReferences;

/// The stored references of the held files. It keeps the last good one of each, so that a file that was renamed in the
/// meantime is still known by it. Main thread only; the port must outlive the object.
class ItemReferences {
 public:
    explicit ItemReferences(FileReferences& files);
    ~ItemReferences();

    /// Looks for the files of stored `references` and calls `done` once with those that are there, in order. Until then
    /// stored() includes the references as they are.
    void load(const QList<QByteArray>& references, std::function<void(const QList<QUrl>&)> done);
    /// Forgets a load() that is under way, with its references.
    void dropLoad();

    /// What to store for `items`, without asking a disk. Files of which no reference can be made are left out.
    QList<QByteArray> stored(const QList<QUrl>& items) const;
    /// Asks the disks of `items`, and forgets what it knows of others. Calls `changed` whenever that changes stored().
    void refresh(const QList<QUrl>& items, std::function<void()> changed);

 private:
    struct Known {
        QByteArray reference;  // the last good one; empty while there is none
        bool asked = false;    // its disk has not answered yet
    };
    struct Loading;

    FileReferences& files_;
    QHash<QUrl, Known> known_;
    std::shared_ptr<Loading> loading_;
    Lifetime lifetime_;
};
