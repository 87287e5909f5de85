#pragma once

#include <functional>
#include <memory>

#include "platform/BackgroundQueue.h"
#include "platform/DragPasteboard.h"
#include "platform/EventMonitors.h"
#include "platform/MainLoop.h"
#include "platform/PanelWindow.h"
#include "platform/ScreenLock.h"
#include "platform/Workspace.h"

/// The parts that depend on which kind of desktop this is.
struct Desktop {
    std::unique_ptr<PanelWindow> panelWindow;
    std::unique_ptr<EventMonitors> monitors;
    std::unique_ptr<Workspace> workspace;
    std::unique_ptr<DragPasteboard> dragPasteboard;
    std::unique_ptr<ScreenLock> screenLock;
    /// Lets the desktop's keeper of the clipboard, where there is one, take over what this program has put there; it
    /// would be lost with the program. Calls `done` later, once: after a second at most.
    std::function<void(std::function<void()> done)> leaveClipboard;
    /// Whether translucent windows are blended with what lies below them, now.
    std::function<bool()> blendsWindows;
};

/// On a platform other than X11 the monitors see nothing but where the pointer is, the workspace only opens and
/// reveals, and no drag is seen from outside. Needs a QGuiApplication. `loop` must live longer than `queue`, and
/// `queue` longer than the parts.
Desktop makeDesktop(MainLoop& loop, BackgroundQueue& queue);

/// Prefers X11, through XWayland if need be, where the user has chosen nothing: elsewhere no window can be placed. To
/// be called before there is a QGuiApplication. True when it has set QT_QPA_PLATFORM: unset that once the application
/// exists, so that programs which this one starts make their own choice.
bool choosePlatform();

/// Whether a QGuiApplication could be made now; it would abort the program where there is no display.
bool displayReachable();
