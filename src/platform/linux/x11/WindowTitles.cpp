#include "platform/linux/x11/WindowTitles.h"

#include <algorithm>

#include "platform/linux/PlainLine.h"

namespace {

constexpr uint32_t kMaxWindows = 1000;
constexpr uint32_t kMaxTitle = 256;  // units of four bytes

using Reply = XcbPtr<xcb_get_property_reply_t>;

QByteArray bytesIn(const Reply& reply) {
    if (!reply || reply->format != 8) return {};
    return {static_cast<const char*>(xcb_get_property_value(reply.get())), qsizetype(reply->value_len)};
}

/// The second of the two names in WM_CLASS.
QString classIn(const Reply& reply) {
    return QString::fromLatin1(bytesIn(reply).split('\0').value(1)).toLower();
}

}  // namespace

WindowTitles::WindowTitles(std::shared_ptr<X11Connection> connection, MainLoop& loop)
    : connection_(std::move(connection)), loop_(loop) {}

WindowTitles::~WindowTitles() {
    watch(false);
}

void WindowTitles::watch(bool on) {
    if (on == bool(events_)) return;
    connection_->selectOnRoot(XCB_EVENT_MASK_PROPERTY_CHANGE, on);
    events_.reset();
    classes_.clear();
    if (!on) return;
    events_ = connection_->handle([this, list = connection_->atom("_NET_CLIENT_LIST")](const auto& event) {
        if (code(event) != XCB_PROPERTY_NOTIFY) return;
        const auto& notify = as<xcb_property_notify_event_t>(event);
        if (notify.window == connection_->root() && notify.atom == list) listWindows();
    });
    listWindows();
}

void WindowTitles::listWindows() {
    const auto cookie = xcb_get_property(connection_->xcb(), false, connection_->root(),
                                         connection_->atom("_NET_CLIENT_LIST"), XCB_ATOM_WINDOW, 0, kMaxWindows);
    connection_->answerLater<xcb_get_property_reply_t>(cookie, lifetime_.guard([this](const Reply& reply) {
        if (!events_ || !reply || reply->format != 32) return;
        const auto* first = static_cast<const xcb_window_t*>(xcb_get_property_value(reply.get()));
        listed({first, first + reply->value_len});
    }));
}

void WindowTitles::listed(const std::vector<xcb_window_t>& windows) {
    const QSet<xcb_window_t> open(windows.begin(), windows.end());
    classes_.removeIf([&](const auto& known) { return !open.contains(known.key()); });
    for (const xcb_window_t window : windows) {
        if (classes_.contains(window)) continue;
        classes_.insert(window, {});
        const auto cookie =
            xcb_get_property(connection_->xcb(), false, window, XCB_ATOM_WM_CLASS, XCB_ATOM_ANY, 0, kMaxTitle);
        connection_->answerLater<xcb_get_property_reply_t>(cookie, lifetime_.guard([this, window](const Reply& reply) {
            if (classes_.contains(window)) classes_[window] = classIn(reply);
        }));
    }
}

bool WindowTitles::isOpen(const QStringList& classes) const {
    return std::any_of(classes_.begin(), classes_.end(), [&](const QString& own) { return classes.contains(own); });
}

void WindowTitles::titles(const QStringList& classes, std::function<void(QStringList)> then) {
    struct Collected {
        QStringList titles;
        qsizetype missing;
    };
    const auto windows = classes_.keys();
    QList<xcb_window_t> wanted;
    for (const xcb_window_t window : windows) {
        if (classes.contains(classes_[window])) wanted.append(window);
    }
    if (wanted.isEmpty()) return loop_.post([then = std::move(then)] { then({}); });
    const auto collected = std::make_shared<Collected>(Collected{{}, wanted.size()});
    for (const xcb_window_t window : wanted) {
        const auto cookie = xcb_get_property(connection_->xcb(), false, window, connection_->atom("_NET_WM_NAME"),
                                             XCB_ATOM_ANY, 0, kMaxTitle);
        connection_->answerLater<xcb_get_property_reply_t>(cookie, [collected, then](const Reply& reply) {
            if (const QByteArray title = bytesIn(reply); !title.isEmpty())
                collected->titles.append(plainLine(QString::fromUtf8(title)));
            if (--collected->missing == 0) then(collected->titles);
        });
    }
}
