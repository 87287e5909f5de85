#pragma once

#include <QByteArray>
#include <QStringList>
#include <QUrl>
#include <functional>
#include <optional>

/// What was dropped on the panel, in the forms that its source offers. Forms are read only on demand, and without
/// blocking. Main thread only. Deleting it tells the source that the drop is finished; pending answers then never
/// arrive.
class Drop {
 public:
    virtual ~Drop() = default;

    /// The types of DropTypes on offer, in the source's order of preference. Plain text is kText whatever the source
    /// calls it; kPromisedBytes is included if a file is promised and its bytes are on offer too.
    virtual QStringList types() const = 0;
    /// Reads one form and calls `done` once, possibly before returning; absent if the source refuses, sends nothing,
    /// stalls for more than five seconds, takes more than a minute, or sends more than 64 MiB. Text is valid UTF-8, cut
    /// off after 1 MiB.
    virtual void load(const QString& type, std::function<void(std::optional<QByteArray>)> done) = 0;

    /// The base name of a file that the source offers to write where we say; absent without such an offer. Untrusted:
    /// exactly as the source gives it, up to 4 KiB.
    virtual std::optional<QByteArray> promisedName() const = 0;
    /// Asks the source to write that file to `target`, an absolute file URL whose folder exists. `done` receives the
    /// source's reply, which proves little: it may still be writing, or only start when the drop is deleted. A source
    /// that hangs never replies. The other forms can still be loaded.
    virtual void savePromise(const QUrl& target, std::function<void(bool saved)> done) = 0;
    /// Tells the source that its promised file was not taken.
    virtual void declinePromise() = 0;
};
