#include "platform/linux/Desktop.h"

#include <QCursor>
#include <QDir>
#include <QFile>
#include <QGuiApplication>

#include "platform/linux/LocalSocket.h"
#include "platform/linux/QtPanelWindow.h"
#include "platform/linux/ScreenCoordinates.h"
#include "platform/linux/SessionLock.h"
#include "platform/linux/freedesktop/Openers.h"
#include "platform/linux/mpris/BrowserKeys.h"
#include "platform/linux/mpris/MprisPlayers.h"
#include "platform/linux/x11/X11Clipboard.h"
#include "platform/linux/x11/X11DragPasteboard.h"
#include "platform/linux/x11/X11EventMonitors.h"
#include "platform/linux/x11/X11PanelWindow.h"
#include "platform/linux/x11/X11ScreenLock.h"
#include "platform/linux/x11/X11Workspace.h"
#include "platform/linux/x11/XTestKeys.h"

namespace {
class PlainMonitors : public EventMonitors {
 public:
    void start() override {}
    QPointF pointerLocation() const override { return toModel(QPointF(QCursor::pos())); }
    bool capsLock() const override { return false; }
};

class PlainWorkspace : public Workspace {
 public:
    explicit PlainWorkspace(BackgroundQueue& queue) : queue_(queue) {}

    void start() override {}
    void activateOrOpenTerminal(const QString&) override {}
    void open(const QUrl& url) override { openUrl(queue_, url); }
    void reveal(const QUrl& file) override { revealFile(queue_, file); }
    void openAccessibilitySettings() override { ::openAccessibilitySettings(queue_); }

 private:
    BackgroundQueue& queue_;
};

class PlainDragPasteboard : public DragPasteboard {
 public:
    int changeCount() const override { return 0; }
    void canReadUsable(std::function<void(bool usable)> answer) override { answer(false); }
};

bool isWaylandReachable() {
    const QString name = qEnvironmentVariable("WAYLAND_DISPLAY");
    if (name.isEmpty()) return false;
    const QString path = QDir(qEnvironmentVariable("XDG_RUNTIME_DIR")).absoluteFilePath(name);
    return bool(connectToLocalSocket(QFile::encodeName(path)));
}
}  // namespace

Desktop makeDesktop(MainLoop& loop, BackgroundQueue& queue) {
    if (QGuiApplication::platformName() == QLatin1String("xcb")) {
        if (const auto connection = X11Connection::open()) {
            const auto sampler = std::make_shared<PointerSampler>(connection, loop);
            auto panel = std::make_unique<X11PanelWindow>(connection, sampler, loop);
            const auto blends = [panel = panel.get()] { return panel->isBlended(); };
            auto lock = std::make_unique<X11ScreenLock>(panel->stacking(), std::make_unique<SessionLock>(loop, queue));
            auto players = std::make_unique<MprisPlayers>(loop, std::make_unique<WindowTitles>(connection, loop));
            auto keys = std::make_unique<BrowserKeys>(*players, std::make_unique<XTestKeys>(connection));
            return {std::move(panel),
                    std::make_unique<X11EventMonitors>(connection, sampler, &X11PanelWindow::isOwnWindow),
                    std::make_unique<X11Workspace>(connection, loop, queue),
                    std::make_unique<X11DragPasteboard>(connection, loop, &X11PanelWindow::isOwnWindow),
                    std::move(lock),
                    std::move(players),
                    std::move(keys),
                    [connection, &loop](auto done) { leaveX11Clipboard(connection, loop, std::move(done)); },
                    blends};
        }
    }
    auto players = std::make_unique<MprisPlayers>(loop, nullptr);
    auto keys = std::make_unique<BrowserKeys>(*players, nullptr);
    return {std::make_unique<QtPanelWindow>(),
            std::make_unique<PlainMonitors>(),
            std::make_unique<PlainWorkspace>(queue),
            std::make_unique<PlainDragPasteboard>(),
            std::make_unique<SessionLock>(loop, queue),
            std::move(players),
            std::move(keys),
            [&loop](auto done) { loop.post(std::move(done)); },
            [] { return true; }};
}

bool choosePlatform() {
    if (!qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM") || qEnvironmentVariableIsEmpty("DISPLAY")) return false;
    return qputenv("QT_QPA_PLATFORM", "xcb");
}

bool isDisplayReachable() {
    // The variable may hold several names, each with options: "wayland;xcb", "offscreen:enable_fonts".
    QStringList platforms = qEnvironmentVariable("QT_QPA_PLATFORM").split(u';', Qt::SkipEmptyParts);
    if (platforms.isEmpty()) platforms = {QStringLiteral("wayland"), QStringLiteral("xcb")};
    return std::any_of(platforms.begin(), platforms.end(), [](const QString& platform) {
        const QString name = platform.section(u':', 0, 0);
        if (name.startsWith(QLatin1String("wayland"))) return isWaylandReachable();
        if (name == QLatin1String("xcb")) return X11Connection::isReachable();
        return name == QLatin1String("offscreen") || name == QLatin1String("minimal");
    });
}
