#include "platform/linux/x11/X11Workspace.h"

#include <QFileInfo>
#include <QStandardPaths>
#include <algorithm>

#include "platform/linux/freedesktop/Openers.h"
#include "platform/linux/freedesktop/Programs.h"

namespace {
// The focus may pass through several windows before it settles. Not restarted by further changes, since some programs
// never let it settle.
constexpr double kSettleSeconds = 0.1;
}  // namespace

X11Workspace::X11Workspace(std::shared_ptr<X11Connection> connection, MainLoop& loop, BackgroundQueue& queue)
    : connection_(std::move(connection)), loop_(loop), queue_(queue), jobs_(queue, loop) {}

X11Workspace::~X11Workspace() {
    if (events_) connection_->selectOnRoot(XCB_EVENT_MASK_PROPERTY_CHANGE, false);
}

void X11Workspace::start() {
    const auto atoms = {connection_->atom("_NET_ACTIVE_WINDOW"), connection_->atom("_NET_CLIENT_LIST")};
    events_ = connection_->handle([this, atoms = std::vector(atoms)](const xcb_generic_event_t& event) {
        if (code(event) != XCB_PROPERTY_NOTIFY || pending_) return;
        const auto& notify = as<xcb_property_notify_event_t>(event);
        if (notify.window == connection_->root() && std::find(atoms.begin(), atoms.end(), notify.atom) != atoms.end())
            pending_ = loop_.after(kSettleSeconds, [this] { windowsChanged(); });
    });
    connection_->selectOnRoot(XCB_EVENT_MASK_PROPERTY_CHANGE, true);
    const auto active = connection_->values(connection_->root(), "_NET_ACTIVE_WINDOW", XCB_ATOM_WINDOW);
    if (!active.empty() && active.front()) activeApplication_ = applicationOf(active.front());
}

void X11Workspace::windowsChanged() {
    pending_.cancel();
    const auto windows = connection_->values(connection_->root(), "_NET_CLIENT_LIST", XCB_ATOM_WINDOW);
    const auto active = connection_->values(connection_->root(), "_NET_ACTIVE_WINDOW", XCB_ATOM_WINDOW);
    // Not every window manager clears the property when the window is closed.
    if (active.empty() || std::find(windows.begin(), windows.end(), active.front()) == windows.end()) {
        // Either the focus is in transit, or the last window of the application is gone.
        const bool open = std::any_of(windows.begin(), windows.end(), [this](xcb_window_t window) {
            return applicationOf(window) == activeApplication_;
        });
        if (!open) activeApplication_.clear();
        return;
    }
    const QByteArray application = applicationOf(active.front());
    if (application == activeApplication_) return;
    activeApplication_ = application;
    if (onApplicationActivated) onApplicationActivated();
}

QByteArray X11Workspace::applicationOf(xcb_window_t window) {
    const auto wmClass = connection_->bytes(window, "WM_CLASS", XCB_ATOM_ANY).split('\0');
    if (wmClass.size() > 1 && !wmClass[1].isEmpty()) return "class " + wmClass[1];
    if (const auto pid = connection_->values(window, "_NET_WM_PID", XCB_ATOM_CARDINAL); !pid.empty())
        return "process " + QByteArray::number(pid.front());
    if (const auto leader = connection_->values(window, "WM_CLIENT_LEADER", XCB_ATOM_WINDOW); !leader.empty())
        return "leader " + QByteArray::number(leader.front());
    return "window " + QByteArray::number(window);
}

QList<ApplicationWindow> X11Workspace::applicationWindows() {
    QList<ApplicationWindow> result;
    for (const auto window : connection_->values(connection_->root(), "_NET_CLIENT_LIST", XCB_ATOM_WINDOW)) {
        const auto wmClass = connection_->bytes(window, "WM_CLASS", XCB_ATOM_ANY).split('\0');
        if (wmClass.size() > 1)
            result.append({window, QString::fromLatin1(wmClass[0]), QString::fromLatin1(wmClass[1])});
    }
    return result;
}

void X11Workspace::activateOrOpenTerminal(const QString& displayName) {
    const auto choose = [displayName, windows = applicationWindows()] {
        const auto findProgram = [](const QString& program) {
            return QFileInfo(QStandardPaths::findExecutable(program)).canonicalFilePath();
        };
        const auto choice = chooseApplicationOrTerminal(displayName, windows, installedApplications(),
                                                        qEnvironmentVariable("TERMINAL"), findProgram);
        QList<QByteArray> command;
        for (const QString& word : choice.command) command.append(word.toLocal8Bit());
        if (!command.isEmpty()) startProgram(command);
        return choice.window;
    };
    jobs_.run(choose, [this](xcb_window_t window) {
        if (window) activate(window);
    });
}

void X11Workspace::activate(xcb_window_t window) {
    constexpr uint32_t kFromPager = 2;
    xcb_client_message_event_t message{};
    message.response_type = XCB_CLIENT_MESSAGE;
    message.format = 32;
    message.window = window;
    message.type = connection_->atom("_NET_ACTIVE_WINDOW");
    message.data.data32[0] = kFromPager;
    xcb_send_event(connection_->xcb(), false, connection_->root(),
                   XCB_EVENT_MASK_SUBSTRUCTURE_REDIRECT | XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY,
                   reinterpret_cast<const char*>(&message));
    connection_->flush();
}

void X11Workspace::open(const QUrl& url) {
    openUrl(queue_, url);
}

void X11Workspace::reveal(const QUrl& file) {
    revealFile(queue_, file);
}

void X11Workspace::openAccessibilitySettings() {
    ::openAccessibilitySettings(queue_);
}
