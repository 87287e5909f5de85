#include "platform/linux/MessageBus.h"

#include <QUuid>

#include "platform/linux/SilentBus.h"

namespace {
constexpr double kGreetingPatience = 1;

// By type: a connection to an address ends the program if the bus does not greet it. All connections of the library
// share a thread, which a silent bus would hold up for ever. Where there is none the library would start one.
QDBusConnection connectTo(QDBusConnection::BusType type, const QByteArray& address) {
    if (address.isEmpty() || isSilentBus(address, kGreetingPatience)) return QDBusConnection(QString());
    return QDBusConnection::connectToBus(type, QUuid::createUuid().toString());
}
}  // namespace

MessageBus MessageBus::session() {
    return MessageBus(connectTo(QDBusConnection::SessionBus, sessionBusAddress()));
}

MessageBus MessageBus::system() {
    return MessageBus(connectTo(QDBusConnection::SystemBus, systemBusAddress()));
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

void MessageBus::hear(const QString& interface, const QString& signal, const QString& first, QObject& receiver,
                      const char* slot) const {
    QDBusConnection connection = connection_;
    connection.connect({}, {}, interface, signal, first.isEmpty() ? QStringList() : QStringList(first), {}, &receiver,
                       slot);
}

bool MessageBus::owned(const QString& service, double seconds) const {
    const QString bus = QStringLiteral("org.freedesktop.DBus");
    const auto answer =
        call({bus, QStringLiteral("/org/freedesktop/DBus"), bus}, QStringLiteral("NameHasOwner"), {service}, seconds);
    return answer.type() == QDBusMessage::ReplyMessage && answer.arguments().value(0).toBool();
}
