#pragma once

#include <functional>
#include <memory>

#include "platform/MainLoop.h"
#include "platform/linux/x11/X11Connection.h"

/// Asks the clipboard manager to take what this program has on the clipboard (the SAVE_TARGETS conversion of the
/// freedesktop clipboard manager convention), which it then reads like any other program. Calls `done` later, once: at
/// the manager's answer, after a second, or soon if there is nothing to take or nobody to take it. Main thread only;
/// `loop` must live until then.
void leaveX11Clipboard(const std::shared_ptr<X11Connection>& connection, MainLoop& loop, std::function<void()> done);
