#include "platform/linux/freedesktop/Openers.h"

#include "platform/FileUrls.h"
#include "platform/linux/MessageBus.h"
#include "platform/linux/freedesktop/Programs.h"

namespace {
constexpr double kFileManagerTimeout = 3;  // seconds
constexpr double kActivationTimeout = 25;  // with one that the bus starts first

void open(const QUrl& url) {
    // A URL starts with a letter, so it cannot be taken for an option.
    const QByteArray address = url.toEncoded();
    if (!startProgram({"xdg-open", address})) startProgram({"gio", "open", address});
}

bool showInFileManager(const QUrl& file) {
    const MessageBus::Peer manager{QStringLiteral("org.freedesktop.FileManager1"),
                                   QStringLiteral("/org/freedesktop/FileManager1"),
                                   QStringLiteral("org.freedesktop.FileManager1")};
    const QStringList files{QString::fromLatin1(file.toEncoded(QUrl::StripTrailingSlash))};
    const MessageBus bus = MessageBus::session();
    const double timeout =
        bus.hasOwner(manager.service, kFileManagerTimeout) ? kFileManagerTimeout : kActivationTimeout;
    return bus.call(manager, QStringLiteral("ShowItems"), {files, QString()}, timeout).type() ==
           QDBusMessage::ReplyMessage;
}
}  // namespace

void openUrl(BackgroundQueue& queue, const QUrl& url) {
    if (!url.isValid() || url.scheme().isEmpty()) return;
    queue.run([url] { open(url); });
}

void revealFile(BackgroundQueue& queue, const QUrl& file) {
    if (!pathOf(file).startsWith('/')) return;
    queue.run([file] {
        if (!showInFileManager(file)) open(file.adjusted(QUrl::StripTrailingSlash).adjusted(QUrl::RemoveFilename));
    });
}

void openAccessibilitySettings(BackgroundQueue& queue) {
    queue.run([] {
        const QList<QByteArray> programs[] = {{"gnome-control-center", "universal-access"},
                                              {"systemsettings", "kcm_access"},
                                              {"cinnamon-settings", "accessibility"},
                                              {"xfce4-accessibility-settings"},
                                              {"mate-at-properties"}};
        for (const auto& program : programs) {
            if (startProgram(program)) return;
        }
    });
}
