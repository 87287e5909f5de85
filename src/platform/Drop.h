#pragma once

#include <QByteArray>
#include <QStringList>
#include <QUrl>
#include <functional>
#include <optional>

/// What was dropped on the panel, in the forms that its source offers. Nothing is read until it is asked for, and
/// reading never blocks. Main thread only. Deleting it tells the source that everything has been taken; answers that
/// are still out do not come then.
class Drop {
 public:
    virtual ~Drop() = default;

    /// Those of DropTypes that are on offer, best first in the source's opinion. Plain text is kText whatever its
    /// source calls it; kPromisedBytes is there where a file is promised and its bytes are on offer as well.
    virtual QStringList types() const = 0;
    /// Reads one form and calls `done` once, perhaps at once; absent when the source refuses, sends nothing, stalls for
    /// more than five seconds, takes more than a minute, or sends more than 64 MiB. Text is valid UTF-8, and the first
    /// MiB of a longer one.
    virtual void load(const QString& type, std::function<void(std::optional<QByteArray>)> done) = 0;

    /// The base name of a file that the source offers to write where we say, as the source gives it, but for what goes
    /// beyond 4 KiB: to be trusted in nothing. Absent when it makes no such offer.
    virtual std::optional<QByteArray> promisedName() const = 0;
    /// Lets the source write that file as `target`, an absolute file URL whose folder exists. `done` gets whether the
    /// source says that it does: it may still be writing then, or only begin when the drop is deleted. A source that
    /// hangs never answers. The other forms can still be loaded.
    virtual void savePromise(const QUrl& target, std::function<void(bool saved)> done) = 0;
    /// Tells the source that the file which it promised was not taken.
    virtual void declinePromise() = 0;
};
