#pragma once

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusVirtualObject>
#include <QProcess>
#include <QUuid>
#include <functional>

#include "support/Environment.h"
#include "support/TestFolder.h"

/// A session and system bus of our own, on which no program can be started.
class TestBus {
 public:
    TestBus() {
        folder().write("config", "<busconfig><type>session</type><listen>" + address() +
                                     R"(</listen><policy context="default"><allow send_destination="*"/>
                                     <allow receive_sender="*"/><allow own="*"/></policy></busconfig>)");
        daemon_.start(QStringLiteral("/usr/bin/dbus-daemon"),
                      {QStringLiteral("--nofork"), QStringLiteral("--print-address"),
                       QStringLiteral("--config-file=") + QString::fromUtf8(folder().path("config"))});
        if (!daemon_.waitForReadyRead()) throw std::runtime_error("no bus");
    }
    ~TestBus() {
        daemon_.kill();
        daemon_.waitForFinished();
    }

    /// Where it listens; nobody does while there is none. The bus library remembers the addresses that it was told
    /// first, so it is the same for all of this process.
    static QByteArray address() { return "unix:path=" + folder().path("bus"); }

 private:
    static const TestFolder& folder() {
        static const TestFolder folder;
        return folder;
    }

    EnvironmentVariable session_{"DBUS_SESSION_BUS_ADDRESS", address()};
    EnvironmentVariable system_{"DBUS_SYSTEM_BUS_ADDRESS", address()};
    QProcess daemon_;
};

/// A program on the bus, which answers every call to it with what `answer` gives, or does not for an invalid message.
/// There must be a TestBus; needs the event loop.
class TestService : public QDBusVirtualObject {
 public:
    explicit TestService(const QString& name)
        : connection_(QDBusConnection::connectToBus(QDBusConnection::SessionBus, QUuid::createUuid().toString())) {
        connection_.registerVirtualObject(QStringLiteral("/"), this, QDBusConnection::SubPath);
        if (!connection_.registerService(name)) throw std::runtime_error("no service");
    }
    ~TestService() override { QDBusConnection::disconnectFromBus(connection_.name()); }

    bool handleMessage(const QDBusMessage& message, const QDBusConnection& connection) override {
        calls.append(message);
        const QDBusMessage reply = answer(message);
        if (reply.type() != QDBusMessage::InvalidMessage) connection.send(reply);
        return true;
    }
    void send(const QDBusMessage& message) const { connection_.send(message); }
    void signal(const QString& path, const QString& interface, const QString& name, const QVariantList& arguments) {
        QDBusMessage message = QDBusMessage::createSignal(path, interface, name);
        message.setArguments(arguments);
        send(message);
    }
    QString introspect(const QString&) const override { return {}; }

    std::function<QDBusMessage(const QDBusMessage&)> answer = [](const QDBusMessage& call) {
        return call.createReply();
    };
    QList<QDBusMessage> calls;

 private:
    QDBusConnection connection_;
};
