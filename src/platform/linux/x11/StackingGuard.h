#pragma once

#include <QRect>
#include <functional>
#include <memory>

#include "platform/MainLoop.h"
#include "platform/linux/x11/TopLevels.h"

/// Keeps our window directly above the highest managed window. Never raises it above other unmanaged
/// (override-redirect) windows, such as menus, drag icons and lockers, which are meant to be on top. If the window
/// manager keeps lowering it, raises become less frequent. Main thread only.
class StackingGuard {
 public:
    /// Guards `window`, a child of the root. `isOwnWindow` returns whether a window belongs to this program, `screen`
    /// the rectangle of the window's screen in device pixels.
    StackingGuard(std::shared_ptr<X11Connection> connection, MainLoop& loop, xcb_window_t window,
                  std::function<bool(xcb_window_t)> isOwnWindow, std::function<QRect()> screen);
    ~StackingGuard();

    /// Restacks the window to its proper place, even if that is lower.
    void settle();
    /// Whether an unmanaged window covers our whole screen, as lockers do.
    bool covered() const { return covered_; }
    /// Called when covered() has changed.
    std::function<void()> onCovered;

 private:
    void handle(const xcb_generic_event_t& event);
    void scheduleCheck();
    void check();
    void raiseAbove(xcb_window_t managed);
    void restack(xcb_window_t sibling, xcb_stack_mode_t mode);
    bool isForeign(xcb_window_t window) const;

    std::shared_ptr<X11Connection> connection_;
    MainLoop& loop_;
    xcb_window_t window_;
    xcb_atom_t clientList_;
    int shapeNotify_ = -1;  // event code; -1 without the extension
    std::function<bool(xcb_window_t)> isOwnWindow_;
    std::function<QRect()> screen_;
    bool covered_ = false;
    Subscription events_;
    TimerHandle soon_, pending_;
    TimerHandle busy_;     // running until events have been quiet for a while
    TimerHandle resting_;  // running while raises are suspended
    double nextRest_;
};
