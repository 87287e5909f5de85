#pragma once

#include <functional>
#include <memory>

#include "platform/BackgroundQueue.h"
#include "platform/DragPasteboard.h"
#include "platform/EventMonitors.h"
#include "platform/MainLoop.h"
#include "platform/MediaKeys.h"
#include "platform/PanelWindow.h"
#include "platform/Players.h"
#include "platform/ScreenLock.h"
#include "platform/Workspace.h"

/// The ports that depend on the window system.
struct Desktop {
    std::unique_ptr<PanelWindow> panelWindow;
    std::unique_ptr<EventMonitors> monitors;
    std::unique_ptr<Workspace> workspace;
    std::unique_ptr<DragPasteboard> dragPasteboard;
    std::unique_ptr<ScreenLock> screenLock;
    std::unique_ptr<Players> players;
    std::unique_ptr<MediaKeys> mediaKeys;  ///< to be destroyed before the players
    /// Lets the clipboard manager, if there is one, take over what this program has put on the clipboard; otherwise it
    /// is lost when the program exits. Calls `done` later, once, after a second at most.
    std::function<void(std::function<void()> done)> leaveClipboard;
    /// Whether translucent windows are currently blended with what lies below them.
    std::function<bool()> blendsWindows;
};

/// On platforms other than X11 the monitors only know the pointer's location, the workspace can only open and reveal,
/// browsers are known only by their media entries, and other programs' drags are not seen until they reach the panel.
/// Needs a QGuiApplication. `loop` must outlive `queue`, and `queue` the ports.
Desktop makeDesktop(MainLoop& loop, BackgroundQueue& queue);

/// Selects X11, possibly through XWayland, unless the user has chosen a platform: Wayland does not let windows place
/// themselves. Call before creating the QGuiApplication. True if it has set QT_QPA_PLATFORM: unset that once the
/// application exists, so that child processes do not inherit it.
bool choosePlatform();

/// Whether a QGuiApplication can be created; without a display it would abort the program.
bool isDisplayReachable();
