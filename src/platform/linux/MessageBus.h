#pragma once

#include <QDBusConnection>
#include <QDBusMessage>
#include <QVariantList>

/// A private D-Bus connection that lives as long as the object. Every call blocks on other programs: only away from the
/// main thread.
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

    /// The reply; an error also if there is no bus or after `seconds`. Activates the service if the bus can.
    QDBusMessage call(const Peer& peer, const QString& method, const QVariantList& arguments, double seconds) const;
    /// Calls a slot of `receiver`, without parameters and in its thread, for every such signal from any sender;
    /// `first`, unless empty, must match the first argument.
    void subscribe(const QString& interface, const QString& signal, const QString& first, QObject& receiver,
                   const char* slot) const;
    /// Whether the service is running.
    bool hasOwner(const QString& service, double seconds) const;

 private:
    explicit MessageBus(const QDBusConnection& connection) : connection_(connection) {}

    QDBusConnection connection_;
};
