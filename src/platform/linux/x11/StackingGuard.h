#pragma once

#include <QRect>
#include <functional>
#include <memory>

#include "platform/MainLoop.h"
#include "platform/linux/x11/TopLevels.h"

/// Keeps our window directly above the highest one that the window manager manages. Windows that nobody manages (menus,
/// drag pictures, lockers, others of our kind) are never risen over: whoever shows one wants it on top. Against a
/// manager that insists the raises get rarer. Main thread only.
class StackingGuard {
 public:
    /// Guards `window`, a child of the root. `ownWindow` tells whether a window belongs to this program, `screen` the
    /// device pixels of the screen that it is on.
    StackingGuard(std::shared_ptr<X11Connection> connection, MainLoop& loop, xcb_window_t window,
                  std::function<bool(xcb_window_t)> ownWindow, std::function<QRect()> screen);
    ~StackingGuard();

    /// Puts the window where it belongs, even if that is lower.
    void settle();
    /// Whether a window that nobody manages hides our whole screen, as lockers do.
    bool covered() const { return covered_; }
    /// Called when covered() has changed.
    std::function<void()> onCovered;

 private:
    void handle(const xcb_generic_event_t& event);
    void lookLater();
    void check();
    void raiseAbove(xcb_window_t managed);
    void restack(xcb_window_t sibling, xcb_stack_mode_t mode);
    bool foreign(xcb_window_t window) const;

    std::shared_ptr<X11Connection> connection_;
    MainLoop& loop_;
    xcb_window_t window_;
    xcb_atom_t clientList_;
    int shapeNotify_ = -1;  // the event's code
    std::function<bool(xcb_window_t)> ownWindow_;
    std::function<QRect()> screen_;
    bool covered_ = false;
    Subscription events_;
    TimerHandle soon_, pending_;
    TimerHandle busy_;     // until nothing has happened for a while
    TimerHandle resting_;  // no raise until it is over
    double nextRest_;
};
