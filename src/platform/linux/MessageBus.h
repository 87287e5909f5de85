#pragma once

#include <QDBusConnection>
#include <QDBusMessage>
#include <QVariantList>

/// A connection of its own to a D-Bus, for as long as the object lives. Everything here waits for other programs: only
/// away from the main thread.
class MessageBus {
 public:
    /// An object of another program, and one of its interfaces.
    struct Peer {
        QString service, path, interface;
    };

    static MessageBus session();
    static MessageBus system();
    ~MessageBus();
    MessageBus(const MessageBus&) = delete;
    MessageBus& operator=(const MessageBus&) = delete;

    /// The answer, or an error: also where there is no bus and when `seconds` have passed. Starts the service if the
    /// bus knows how.
    QDBusMessage call(const Peer& peer, const QString& method, const QVariantList& arguments, double seconds) const;
    /// Calls a slot without parameters of `receiver`, in its thread, whenever anybody sends the signal; `first`, unless
    /// empty, is what its first argument must be.
    void hear(const QString& interface, const QString& signal, const QString& first, QObject& receiver,
              const char* slot) const;
    /// Whether a program runs that offers the service.
    bool owned(const QString& service, double seconds) const;

 private:
    explicit MessageBus(const QDBusConnection& connection) : connection_(connection) {}

    QDBusConnection connection_;
};
