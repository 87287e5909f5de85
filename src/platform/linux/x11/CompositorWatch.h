#pragma once

#include <functional>
#include <memory>

#include "platform/linux/x11/X11Connection.h"

/// Knows whether a compositor blends the screen's windows, which is what a translucent window needs. Main thread only.
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

/// Whether the X server is itself a client of a Wayland compositor. That one always blends.
bool underXWayland(X11Connection& connection);
