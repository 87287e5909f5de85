#include "platform/linux/freedesktop/ShareTargets.h"

#include <QDBusArgument>
#include <QDBusObjectPath>
#include <QStandardPaths>

#include "platform/FileUrls.h"
#include "platform/linux/MessageBus.h"
#include "platform/linux/freedesktop/DesktopEntries.h"
#include "platform/linux/freedesktop/MimeTypes.h"
#include "platform/linux/freedesktop/Openers.h"
#include "platform/linux/freedesktop/Programs.h"

namespace {
constexpr double kTimeout = 1;
constexpr int kMaxPrograms = 12;
constexpr int kMaxDevices = 8;

const QString kKdeConnect = QStringLiteral("org.kde.kdeconnect");
const QString kBluetooth = QStringLiteral("org.bluez");

bool isInstalled(const char* program) {
    return !QStandardPaths::findExecutable(QLatin1String(program)).isEmpty();
}

bool succeeded(const QDBusMessage& answer) {
    return answer.type() == QDBusMessage::ReplyMessage && !answer.arguments().isEmpty();
}

/// Makes an untrusted name fit for a menu.
QString menuTitle(const QString& name) {
    constexpr int kMaxTitle = 40;
    const QString plain = name.simplified();
    return plain.size() > kMaxTitle ? plain.first(kMaxTitle - 1) + u'\u2026' : plain;
}

/// Whether the thing can be sent: a link, or a file that is not a folder.
bool canSend(const QUrl& thing) {
    if (!thing.isLocalFile()) return true;
    const QMimeType type = mimeTypeOf(pathOf(thing));
    return type.isValid() && type.name() != QLatin1String("inode/directory");
}

ShareOffer starting(BackgroundQueue& queue, const QString& title, const QList<QByteArray>& command) {
    return {title, [&queue, command] { queue.run([command] { startProgram(command); }); }, {}};
}

/// The MIME types by which to find programs for the thing, most specific first.
QStringList typesOf(const QUrl& thing) {
    if (!thing.isLocalFile()) return {QStringLiteral("x-scheme-handler/") + thing.scheme()};
    const QMimeType type = mimeTypeOf(pathOf(thing));
    if (!type.isValid()) return {};
    QStringList types = type.allAncestors();
    types.prepend(type.name());
    types.removeAll(QStringLiteral("application/octet-stream"));
    return types;
}

MessageBus::Peer kdeConnectPeer(const QString& below, const char* interface) {
    return {kKdeConnect, QStringLiteral("/modules/kdeconnect") + below, kKdeConnect + QLatin1String(interface)};
}

void shareByKdeConnect(const QString& device, const QString& address) {
    constexpr double kShareTimeout = 5;
    const auto peer = kdeConnectPeer(QStringLiteral("/devices/") + device + QStringLiteral("/share"), ".device.share");
    MessageBus::session().call(peer, QStringLiteral("shareUrl"), {address}, kShareTimeout);
}

bool isAdapterOn() {
    using Interfaces = QMap<QString, QVariantMap>;
    const MessageBus bus = MessageBus::system();
    if (!bus.hasOwner(kBluetooth, kTimeout)) return false;
    const auto answer =
        bus.call({kBluetooth, QStringLiteral("/"), QStringLiteral("org.freedesktop.DBus.ObjectManager")},
                 QStringLiteral("GetManagedObjects"), {}, kTimeout);
    if (!succeeded(answer) || answer.signature() != QLatin1String("a{oa{sa{sv}}}")) return false;
    const auto objects = qdbus_cast<QMap<QDBusObjectPath, Interfaces>>(answer.arguments().first());
    return std::any_of(objects.begin(), objects.end(), [](const Interfaces& interfaces) {
        return interfaces.value(QStringLiteral("org.bluez.Adapter1")).value(QStringLiteral("Powered")).toBool();
    });
}
}  // namespace

QList<ShareOffer> mailOffers(BackgroundQueue& queue, const QUrl& thing) {
    const QString title = QStringLiteral("Send by mail\u2026");
    const bool file = thing.isLocalFile();
    if (file && !isInstalled("xdg-email")) return {};
    if (!canSend(thing) || applicationsFor({QStringLiteral("x-scheme-handler/mailto")}, 1).isEmpty()) return {};
    if (file) return {starting(queue, title, {"xdg-email", "--attach", pathOf(thing)})};
    const QUrl mail = QUrl::fromEncoded("mailto:?body=" + thing.toEncoded().toPercentEncoding());
    return {{title, [&queue, mail] { openUrl(queue, mail); }, {}}};
}

QList<ShareOffer> kdeConnectOffers(BackgroundQueue& queue, const QUrl& thing) {
    const MessageBus bus = MessageBus::session();
    if (!bus.hasOwner(kKdeConnect, kTimeout) || !canSend(thing)) return {};
    const auto answer = bus.call(kdeConnectPeer({}, ".daemon"), QStringLiteral("deviceNames"),
                                 {true /* reachable */, true /* paired */}, kTimeout);
    if (!succeeded(answer) || answer.signature() != QLatin1String("a{ss}")) return {};
    const auto names = qdbus_cast<QMap<QString, QString>>(answer.arguments().first());
    QList<ShareOffer> offers;
    for (auto device = names.begin(); device != names.end() && offers.size() < kMaxDevices; ++device) {
        const QString below = QStringLiteral("/devices/") + device.key();
        const auto able = bus.call(kdeConnectPeer(below, ".device"), QStringLiteral("hasPlugin"),
                                   {QStringLiteral("kdeconnect_share")}, kTimeout);
        if (!succeeded(able) || !able.arguments().first().toBool()) continue;
        offers.append({QStringLiteral("Send to ") + menuTitle(device.value()),
                       [&queue, id = device.key(), address = QString::fromLatin1(thing.toEncoded())] {
                           queue.run([id, address] { shareByKdeConnect(id, address); });
                       },
                       {}});
    }
    return offers;
}

QList<ShareOffer> bluetoothOffers(BackgroundQueue& queue, const QUrl& thing) {
    if (!thing.isLocalFile()) return {};
    for (const char* program : {"bluetooth-sendto", "blueman-sendto"}) {
        if (!isInstalled(program)) continue;
        if (!canSend(thing) || !isAdapterOn()) return {};
        return {starting(queue, QStringLiteral("Send over Bluetooth\u2026"), {program, pathOf(thing)})};
    }
    return {};
}

QList<ShareOffer> programOffers(BackgroundQueue& queue, const QUrl& thing) {
    ShareOffer openWith{QStringLiteral("Open with"), {}, {}};
    for (const DesktopEntry& entry : applicationsFor(typesOf(thing), kMaxPrograms))
        openWith.choices.append(starting(queue, menuTitle(entry.names.last()), commandFor(entry, thing)));
    if (openWith.choices.isEmpty()) return {};
    return {openWith};
}
