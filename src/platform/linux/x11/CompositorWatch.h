#pragma once

#include <functional>
#include <memory>

#include "platform/linux/x11/X11Connection.h"

/// Knows whether a compositor is running, without which translucent windows are not blended. Main thread only.
class CompositorWatch {
 public:
    CompositorWatch(std::shared_ptr<X11Connection> connection, std::function<void()> onChange);

    bool running() const { return running_; }

 private:
    void handle(const xcb_generic_event_t& event);

    std::shared_ptr<X11Connection> connection_;
    std::function<void()> onChange_;
    xcb_atom_t selection_;
    int firstEvent_ = -1;
    bool running_ = false;
    Subscription events_;
};

/// Whether the X server is XWayland. Its compositor always blends.
bool isXWayland(X11Connection& connection);
