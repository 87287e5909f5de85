#pragma once

#include <QHash>
#include <QList>
#include <QUrl>
#include <functional>
#include <memory>

#include "platform/Lifetime.h"

class FileReferences;

/// The stored references of the held files. It keeps the last good reference to each file, by which a renamed file can
/// still be found. Main thread only; the port must outlive the object.
class ItemReferences {
 public:
    explicit ItemReferences(FileReferences& files);
    ~ItemReferences();

    /// Resolves stored `references` and calls `done` once with the files that exist, in order. Until then stored()
    /// includes the references as they are.
    void load(const QList<QByteArray>& references, std::function<void(const QList<QUrl>&)> done);
    /// Cancels a pending load() and drops its references.
    void cancelLoad();

    /// What to store for `items`, without disk access. Files that cannot be referenced are left out.
    QList<QByteArray> stored(const QList<QUrl>& items) const;
    /// Looks up `items` on their disks and forgets all other files. Calls `changed` whenever that changes stored().
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
