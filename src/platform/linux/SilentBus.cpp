#include "platform/linux/SilentBus.h"

#include <poll.h>

#include <QDBusConnection>
#include <QDeadlineTimer>
#include <QtEndian>
#include <algorithm>

#include "platform/linux/LocalSocket.h"

namespace {
constexpr double kTimeout = 2;
constexpr const char* kSession = "DBUS_SESSION_BUS_ADDRESS";

QByteArray runtimeBus() {
    return qgetenv("XDG_RUNTIME_DIR") + "/bus";
}

/// The name of the Unix socket, which begins with a zero byte if it is abstract; empty for other kinds of addresses.
QByteArray socketName(const QByteArray& address) {
    if (!address.startsWith("unix:")) return {};
    for (const QByteArray& part : address.mid(5).split(',')) {
        const qsizetype equals = part.indexOf('=');
        const QByteArray key = part.left(equals), value = QByteArray::fromPercentEncoding(part.mid(equals + 1));
        if (key == "path") return value;
        if (key == "abstract") return '\0' + value;
        if (key == "runtime") return runtimeBus();
    }
    return {};
}

/// Appends a string field of a message header, as in the D-Bus specification.
void addField(QByteArray& fields, char code, char type, const QByteArray& value) {
    while (fields.size() % 8) fields += '\0';
    const auto length = qToLittleEndian(quint32(value.size()));
    fields += code;
    fields += '\1';
    fields += type;
    fields += '\0';
    fields.append(reinterpret_cast<const char*>(&length), sizeof length);
    fields += value + '\0';
}

/// The call that a bus requires before any other.
QByteArray helloMessage() {
    QByteArray fields;
    addField(fields, 1, 'o', "/org/freedesktop/DBus");
    addField(fields, 2, 's', "org.freedesktop.DBus");
    addField(fields, 3, 's', "Hello");
    addField(fields, 6, 's', "org.freedesktop.DBus");
    const quint32 numbers[] = {0, qToLittleEndian(1U), qToLittleEndian(quint32(fields.size()))};  // no body; serial
    while (fields.size() % 8) fields += '\0';
    return QByteArray("l\1\0\1", 4) + QByteArray(reinterpret_cast<const char*>(numbers), sizeof numbers) + fields;
}

/// The bus's reply; absent after `deadline`. A closed connection counts as an empty reply.
std::optional<QByteArray> answerTo(int descriptor, const QByteArray& request, const QDeadlineTimer& deadline) {
    if (send(descriptor, request.constData(), size_t(request.size()), MSG_NOSIGNAL) < 0) return {};
    pollfd answer{descriptor, POLLIN, 0};
    int ready = 0;
    do ready = poll(&answer, 1, int(deadline.remainingTime()));
    while (ready < 0 && errno == EINTR);
    if (ready <= 0) return {};
    char bytes[1024];
    return QByteArray(bytes, std::max(recv(descriptor, bytes, sizeof bytes, 0), ssize_t(0)));
}

/// Authenticates as libdbus would and says hello: some buses accept a connection and then never reply.
bool greets(int descriptor, double seconds) {
    const QDeadlineTimer deadline(qint64(seconds * 1000));
    const QByteArray user = QByteArray::number(getuid()).toHex();
    const auto answer = answerTo(descriptor, '\0' + ("AUTH EXTERNAL " + user) + "\r\n", deadline);
    // Other authentication mechanisms are left to libdbus.
    if (!answer || !answer->startsWith("OK")) return answer.has_value();
    return answerTo(descriptor, "BEGIN\r\n" + helloMessage(), deadline).has_value();
}
}  // namespace

bool isSilentBus(const QByteArray& addresses, double seconds) {
    for (const QByteArray& address : addresses.split(';')) {
        if (const Descriptor bus = connectToLocalSocket(socketName(address))) return !greets(bus.get(), seconds);
    }
    return false;
}

QByteArray sessionBusAddress() {
    if (const QByteArray told = qgetenv(kSession); !told.isEmpty()) return told;
    return access(runtimeBus().constData(), F_OK) == 0 ? "unix:path=" + runtimeBus() : QByteArray();
}

QByteArray systemBusAddress() {
    const QByteArray told = qgetenv("DBUS_SYSTEM_BUS_ADDRESS");
    return told.isEmpty() ? "unix:path=/run/dbus/system_bus_socket" : told;
}

SilentBusGuard::SilentBusGuard() {
    const QByteArray address = sessionBusAddress();
    hiding_ = address.isEmpty() || isSilentBus(address, kTimeout);
    if (!hiding_) return;
    if (qEnvironmentVariableIsSet(kSession)) before_ = qgetenv(kSession);
    qputenv(kSession, "unix:path=/dev/null");
}

void SilentBusGuard::restoreEnvironment() {
    if (!hiding_) return;
    // Qt connects once and keeps that result for good.
    QDBusConnection::sessionBus();
    before_ ? qputenv(kSession, *before_) : qunsetenv(kSession);
}
