#pragma once

#include <xcb/shape.h>

#include <QRect>
#include <functional>
#include <vector>

#include "platform/linux/x11/X11Connection.h"

/// The root window's children, from the bottom to the top, as they were when asked for; most of them may be invisible.
/// Every question here waits for the server, but their number does not grow with the number of windows.
class TopLevels {
 public:
    explicit TopLevels(X11Connection& connection);

    /// How far up a window is; negative for what is not a child of the root.
    int place(xcb_window_t window) const;
    /// The highest visible one that belongs to a window which the window manager manages; without a manager that tells,
    /// the highest that would have been managed. 0 for none.
    xcb_window_t highestManaged() const;
    /// The lowest visible one that nobody manages and that `counts`, pictures of a desktop apart. 0 for none.
    xcb_window_t lowestUnmanaged(const std::function<bool(xcb_window_t)>& counts) const;
    /// Whether one that nobody manages, that `counts` and lies higher than `above` hides `area` and takes its clicks.
    /// The connection hears of it when the shape of a window of that size changes.
    bool cover(const QRect& area, int above, const std::function<bool(xcb_window_t)>& counts) const;

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
