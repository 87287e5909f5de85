#include "platform/linux/SessionLock.h"

#include <QDBusObjectPath>
#include <QDBusVariant>
#include <QTimer>
#include <utility>

#include "platform/linux/MessageBus.h"

namespace {
constexpr double kTimeout = 2;  // seconds for an answer

const QString kLogin = QStringLiteral("org.freedesktop.login1");
const QString kSession = QStringLiteral("org.freedesktop.login1.Session");
const QString kSaver = QStringLiteral("org.freedesktop.ScreenSaver");
const QString kProperties = QStringLiteral("org.freedesktop.DBus.Properties");
const QString kBus = QStringLiteral("org.freedesktop.DBus");

QVariant firstValue(const QDBusMessage& answer) {
    return answer.type() == QDBusMessage::ReplyMessage ? answer.arguments().value(0) : QVariant();
}

bool hintsLock(const MessageBus& bus) {
    if (!bus.hasOwner(kLogin, kTimeout)) return false;
    const QString id = qEnvironmentVariable("XDG_SESSION_ID", QStringLiteral("auto"));
    const MessageBus::Peer manager{kLogin, QStringLiteral("/org/freedesktop/login1"),
                                   kLogin + QStringLiteral(".Manager")};
    const auto session = firstValue(bus.call(manager, QStringLiteral("GetSession"), {id}, kTimeout));
    const QString path = session.value<QDBusObjectPath>().path();
    if (path.isEmpty()) return false;
    const auto hint = firstValue(bus.call({kLogin, path, kProperties}, QStringLiteral("Get"),
                                          {kSession, QStringLiteral("LockedHint")}, kTimeout));
    return hint.value<QDBusVariant>().variant().toBool();
}

bool saverActive(const MessageBus& bus) {
    if (!bus.hasOwner(kSaver, kTimeout)) return false;
    // Older desktops use the second path.
    for (const auto* path : {"/org/freedesktop/ScreenSaver", "/ScreenSaver"}) {
        const auto active =
            firstValue(bus.call({kSaver, QLatin1String(path), kSaver}, QStringLiteral("GetActive"), {}, kTimeout));
        if (active.isValid()) return active.toBool();
    }
    return false;
}
}  // namespace

/// Used on the queue, by one job at a time.
struct SessionLock::Buses {
    std::unique_ptr<const MessageBus> system, session;
    /// Fires, on the main thread, when something may have changed.
    std::shared_ptr<QTimer> hint{new QTimer, [](QTimer* timer) { timer->deleteLater(); }};

    // Anyone on the system bus can send these signals, so they only make us ask.
    void open() {
        system.reset(new MessageBus(MessageBus::system()));
        session.reset(new MessageBus(MessageBus::session()));
        const char* slot = SLOT(start());
        system->subscribe(kProperties, QStringLiteral("PropertiesChanged"), kSession, *hint, slot);
        session->subscribe(kSaver, QStringLiteral("ActiveChanged"), {}, *hint, slot);
        system->subscribe(kBus, QStringLiteral("NameOwnerChanged"), kLogin, *hint, slot);
        session->subscribe(kBus, QStringLiteral("NameOwnerChanged"), kSaver, *hint, slot);
    }
};

SessionLock::SessionLock(MainLoop& loop, BackgroundQueue& queue)
    : buses_(std::make_shared<Buses>()), jobs_(queue, loop) {
    QTimer* hint = buses_->hint.get();
    hint->setSingleShot(true);
    QObject::connect(hint, &QTimer::timeout, hint, [this] { ask(); });
    ask();
}

SessionLock::~SessionLock() {
    buses_->hint->disconnect();
}

void SessionLock::ask() {
    askAgain_ = asking_;
    if (asking_) return;
    asking_ = true;
    const auto look = [buses = buses_] {
        if (!buses->system) buses->open();
        return hintsLock(*buses->system) || saverActive(*buses->session);
    };
    jobs_.run(look, [this](bool locked) {
        asking_ = false;
        if (askAgain_) buses_->hint->start();
        if (std::exchange(locked_, locked) != locked && onChange) onChange();
    });
}
