#include "platform/linux/MessageBus.h"

#include <QUuid>

#include "platform/linux/SilentBus.h"

namespace {
constexpr double kGreetingTimeout = 1;

// Connects by type: a connection by address would abort the program if the bus does not reply to it. Silent buses are
// skipped because they would block the thread that all of Qt's connections share, and a missing address because
// libdbus would start a new bus.
QDBusConnection connectTo(QDBusConnection::BusType type, const QByteArray& address) {
    if (address.isEmpty() || isSilentBus(address, kGreetingTimeout)) return QDBusConnection(QString());
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

void MessageBus::subscribe(const QString& interface, const QString& signal, const QString& first, QObject& receiver,
                           const char* slot) const {
    QDBusConnection connection = connection_;
    connection.connect({}, {}, interface, signal, first.isEmpty() ? QStringList() : QStringList(first), {}, &receiver,
                       slot);
}

bool MessageBus::hasOwner(const QString& service, double seconds) const {
    const QString bus = QStringLiteral("org.freedesktop.DBus");
    const auto answer =
        call({bus, QStringLiteral("/org/freedesktop/DBus"), bus}, QStringLiteral("NameHasOwner"), {service}, seconds);
    return answer.type() == QDBusMessage::ReplyMessage && answer.arguments().value(0).toBool();
}
