#pragma once

#include <QHash>
#include <QSet>
#include <QStringList>
#include <functional>
#include <memory>

#include "platform/Lifetime.h"
#include "platform/MainLoop.h"
#include "platform/linux/x11/X11Connection.h"

/// Which programs have windows, by window class, and what their titles say. The X server's answers are not waited for.
/// Main thread only.
class WindowTitles {
 public:
    WindowTitles(std::shared_ptr<X11Connection> connection, MainLoop& loop);
    ~WindowTitles();

    /// Follows the list of windows from now on, or stops to. Off at first.
    void watch(bool on);
    /// Whether a window of one of these classes, in lower case, is open.
    bool isOpen(const QStringList& classes) const;
    /// Calls `then` later with the titles of all windows of these classes.
    void titles(const QStringList& classes, std::function<void(QStringList)> then);

 private:
    void listWindows();
    void listed(const std::vector<xcb_window_t>& windows);

    std::shared_ptr<X11Connection> connection_;
    MainLoop& loop_;
    Subscription events_;
    QHash<xcb_window_t, QString> classes_;  // in lower case
    Lifetime lifetime_;
};
