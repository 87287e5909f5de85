#pragma once

#include <xcb/shape.h>

#include <QRect>
#include <functional>
#include <vector>

#include "platform/linux/x11/X11Connection.h"

/// A snapshot of the root window's children, from bottom to top; most of them may be invisible. Every call makes round
/// trips to the server, whose number is bounded however many windows there are.
class TopLevels {
 public:
    explicit TopLevels(X11Connection& connection);

    /// A window's position in the stack, from 0 at the bottom; negative if it is not a child of the root.
    int place(xcb_window_t window) const;
    /// The highest visible window that the window manager manages; if it publishes no list, the highest without
    /// override-redirect. 0 if there is none.
    xcb_window_t highestManaged() const;
    /// The lowest visible unmanaged window that `counts`, except desktop windows. 0 if there is none.
    xcb_window_t lowestUnmanaged(const std::function<bool(xcb_window_t)>& counts) const;
    /// Whether an unmanaged window that `counts` and is higher than `above` covers `area` and takes its clicks. Also
    /// subscribes to shape changes of windows of that size.
    bool isCovered(const QRect& area, int above, const std::function<bool(xcb_window_t)>& counts) const;

 private:
    enum class Kind { invisible, managed, unmanaged };

    std::vector<Kind> kinds(const std::vector<xcb_window_t>& windows) const;
    std::vector<xcb_window_t> framesOf(std::vector<xcb_window_t> clients) const;
    std::vector<xcb_window_t> candidates(const QRect& area) const;
    bool isDesktop(xcb_window_t window) const;
    bool hides(xcb_window_t window, const QRect& area) const;
    bool fills(xcb_window_t window, xcb_shape_sk_t kind, const QRect& area) const;

    X11Connection& connection_;
    std::vector<xcb_window_t> windows_;
};
