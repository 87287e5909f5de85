#pragma once

#include <memory>

#include "platform/BackgroundJobs.h"
#include "platform/Workspace.h"
#include "platform/linux/freedesktop/TerminalChoice.h"
#include "platform/linux/x11/X11Connection.h"

/// Other programs, as known from their windows and the window manager. Without a window manager that publishes its list
/// of windows nothing is reported or brought forward, but a terminal can still be started.
class X11Workspace : public Workspace {
 public:
    X11Workspace(std::shared_ptr<X11Connection> connection, MainLoop& loop, BackgroundQueue& queue);
    ~X11Workspace() override;

    void start() override;
    void activateOrOpenTerminal(const QString& displayName) override;
    void open(const QUrl& url) override;
    void reveal(const QUrl& file) override;
    void openAccessibilitySettings() override;

 private:
    void windowsChanged();
    QByteArray applicationOf(xcb_window_t window);
    QList<ApplicationWindow> applicationWindows();
    void activate(xcb_window_t window);

    std::shared_ptr<X11Connection> connection_;
    MainLoop& loop_;
    BackgroundQueue& queue_;
    Subscription events_;
    TimerHandle pending_;
    /// Identifies the active application; empty if none was active yet, or it was closed.
    QByteArray activeApplication_;
    BackgroundJobs jobs_;
};
