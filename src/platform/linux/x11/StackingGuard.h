#pragma once

#include <functional>
#include <memory>

#include "platform/MainLoop.h"
#include "platform/linux/x11/X11Connection.h"

/// Notices when another program's window covers ours, and has ours raised again. Against a program that insists the
/// raises get rarer. Main thread only.
class StackingGuard {
 public:
    /// Guards `window`, a child of the root. `ownWindow` tells whether a window belongs to this program: its menus may
    /// cover it. `raise` puts the window on top.
    StackingGuard(std::shared_ptr<X11Connection> connection, MainLoop& loop, xcb_window_t window,
                  std::function<bool(xcb_window_t)> ownWindow, std::function<void()> raise);
    ~StackingGuard();

 private:
    void checkIn(double seconds);
    void check();
    bool covered();

    std::shared_ptr<X11Connection> connection_;
    MainLoop& loop_;
    xcb_window_t window_;
    std::function<bool(xcb_window_t)> ownWindow_;
    std::function<void()> raise_;
    Observation events_;
    TimerHandle pending_;
    double secondsToNextRaise_;
};
