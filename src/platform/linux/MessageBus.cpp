#include "platform/linux/MessageBus.h"

#include <QFileInfo>
#include <QUuid>

namespace {
// By type: a connection to an address ends the program if the bus does not greet it.
QDBusConnection connectTo(QDBusConnection::BusType type) {
    return QDBusConnection::connectToBus(type, QUuid::createUuid().toString());
}
}  // namespace

MessageBus MessageBus::session() {
    // Without either the library would start a bus of its own.
    const bool there = !qEnvironmentVariableIsEmpty("DBUS_SESSION_BUS_ADDRESS") ||
                       QFileInfo::exists(qEnvironmentVariable("XDG_RUNTIME_DIR") + QStringLiteral("/bus"));
    return MessageBus(there ? connectTo(QDBusConnection::SessionBus) : QDBusConnection(QString()));
}

MessageBus MessageBus::system() {
    return MessageBus(connectTo(QDBusConnection::SystemBus));
}

MessageBus::~MessageBus() {
    QDBusConnection::disconnectFromBus(connection_.name());
}

QDBusMessage MessageBus::call(const Peer& peer, const QString& method, const QVariantList& arguments,
                              double seconds) const {
    QDBusMessage message = QDBusMessage::createMethodCall(peer.service, peer.path, peer.interface, method);
    message.setArguments(arguments);
    return connection_.call(message, QDBus::Block, int(seconds * 1000));
}

bool MessageBus::owned(const QString& service, double seconds) const {
    const QString bus = QStringLiteral("org.freedesktop.DBus");
    const auto answer =
        call({bus, QStringLiteral("/org/freedesktop/DBus"), bus}, QStringLiteral("NameHasOwner"), {service}, seconds);
    return answer.type() == QDBusMessage::ReplyMessage && answer.arguments().value(0).toBool();
}
