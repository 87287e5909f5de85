#pragma once

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusVirtualObject>
#include <QFile>
#include <QProcess>
#include <QTemporaryDir>
#include <QUuid>
#include <functional>

#include "support/Environment.h"

/// A session and system bus of our own, on which no program can be started.
class TestBus {
 public:
    TestBus() {
        QFile config(folder().filePath(QStringLiteral("config")));
        if (!config.open(QFile::WriteOnly)) throw std::runtime_error("no configuration");
        config.write("<busconfig><type>session</type><listen>" + address() +
                     "</listen><policy context=\"default\"><allow send_destination=\"*\"/><allow "
                     "receive_sender=\"*\"/><allow own=\"*\"/>"
                     "</policy></busconfig>");
        config.close();
        daemon_.start(QStringLiteral("/usr/bin/dbus-daemon"),
                      {QStringLiteral("--nofork"), QStringLiteral("--print-address"),
                       QStringLiteral("--config-file=") + config.fileName()});
        if (!daemon_.waitForReadyRead()) throw std::runtime_error("no bus");
    }
    ~TestBus() {
        daemon_.kill();
        daemon_.waitForFinished();
    }

    /// Where it listens; nobody does while there is none. The bus library remembers the addresses that it was told
    /// first, so it is the same for all of this process.
    static QByteArray address() { return "unix:path=" + folder().path().toUtf8() + "/bus"; }

 private:
    static const QTemporaryDir& folder() {
        static const QTemporaryDir folder;
        return folder;
    }

    EnvironmentVariable session_{"DBUS_SESSION_BUS_ADDRESS", address()};
    EnvironmentVariable system_{"DBUS_SYSTEM_BUS_ADDRESS", address()};
    QProcess daemon_;
};

/// A program on the bus, which answers every call to it with what `answer` gives, or leaves it without an answer for an
/// invalid one. There must be
/// a TestBus; needs the event loop.
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
    void send(const QString& path, const QString& interface, const QString& signal, const QVariantList& arguments) {
        QDBusMessage message = QDBusMessage::createSignal(path, interface, signal);
        message.setArguments(arguments);
        connection_.send(message);
    }
    QString introspect(const QString&) const override { return {}; }

    std::function<QDBusMessage(const QDBusMessage&)> answer = [](const QDBusMessage& call) {
        return call.createReply();
    };
    QList<QDBusMessage> calls;

 private:
    QDBusConnection connection_;
};
