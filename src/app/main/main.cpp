#include <malloc.h>

#include <QApplication>
#include <QFile>
#include <QRandomGenerator>
#include <QStandardPaths>
#include <algorithm>
#include <csignal>
#include <cstdlib>

#include "app/AppDelegate.h"
#include "app/EndSignals.h"
#include "app/MainMenu.h"
#include "platform/linux/CanberraSounds.h"
#include "platform/linux/Desktop.h"
#include "platform/linux/DesktopIcons.h"
#include "platform/linux/DesktopSharing.h"
#include "platform/linux/FilePreferences.h"
#include "platform/linux/PathReferences.h"
#include "platform/linux/QtMainLoop.h"
#include "platform/linux/QtPasteboard.h"
#include "platform/linux/QtScreens.h"
#include "platform/linux/ScreenCoordinates.h"
#include "platform/linux/SilentBus.h"
#include "platform/linux/SystemClock.h"
#include "platform/linux/ThreadQueues.h"
#include "platform/linux/WorkerProcess.h"

namespace {
void popUpMenu(const Desktop& desktop, const QList<MenuItem>& items, QPointF at) {
    popUp(items, toQt(at).toPoint(), desktop.blendsWindows());
}
}  // namespace

int main(int argc, char** argv) {
    // Threads that hardly ever meet need no heap each.
    ::mallopt(M_ARENA_MAX, 2);
    // Whoever read what this program writes may end before it.
    std::signal(SIGPIPE, SIG_IGN);
    const QStringList arguments = [&] {
        QStringList list;
        for (int i = 0; i < argc; ++i) list.append(QString::fromLocal8Bit(argv[i]));
        return list;
    }();
    const bool chosen = choosePlatform();
    if (!displayReachable()) {
        Diagnostics(arguments).log(QStringLiteral("no screen to live on"));
        return 0;
    }
    SilentBusGuard busGuard;
    // The toolkit gets the name only: it would end the program over an option of its own that it cannot follow.
    int nameOnly = std::min(argc, 1);
    QApplication application(nameOnly, argv);
    if (chosen) qunsetenv("QT_QPA_PLATFORM");
    busGuard.restoreEnvironment();
    QApplication::setApplicationName(QStringLiteral("glimmet"));
    // The panel is no window in this sense: closing a menu must not end the program.
    QApplication::setQuitOnLastWindowClosed(false);
    const auto quit = [] { QCoreApplication::quit(); };

    SystemClock clock;
    QtMainLoop loop;
    ThreadQueue background;
    ThreadQueue references, pictures, drops;  // a dead disk may hold up all of a queue's threads
    ThreadSerialQueue writing;
    ThreadSerialQueue playing;
    ThreadSerialQueue jobs;
    FilePreferences preferences(FilePreferences::defaultPath(), writing);
    PathReferences files(references);
    QtScreens screens(preferences, loop);
    CanberraSounds sounds(playing);
    QtPasteboard pasteboard;
    DesktopIcons icons(pictures, loop);
    DesktopSharing sharing(background, loop, pasteboard);
    WorkerProcess worker(QFile::encodeName(QCoreApplication::applicationDirPath() + QStringLiteral("/glimmet-worker")));
    const Desktop desktop = makeDesktop(loop, background);
    const EndSignals endSignals(quit);
    MainMenu mainMenu(application, quit);

    AppDelegate delegate(
        Ports{.clock = clock,
              .loop = loop,
              .preferences = preferences,
              .files = files,
              .screens = screens,
              .window = *desktop.panelWindow,
              .monitors = *desktop.monitors,
              .screenLock = *desktop.screenLock,
              .workspace = *desktop.workspace,
              .sounds = sounds,
              .dragPasteboard = *desktop.dragPasteboard,
              .pasteboard = pasteboard,
              .sharing = sharing,
              .icons = icons,
              .worker = worker,
              .disk = drops,
              .jobs = jobs,
              .random = [] { return QRandomGenerator::global()->generateDouble(); },
              .popUp = [&](const QList<MenuItem>& items, QPointF at) { popUpMenu(desktop, items, at); },
              .closePopUp = closePopUp,
              .quit = quit,
              .dataFolder = QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation)},
        arguments);
    if (delegate.launch() != AppDelegate::Launch::running) return 0;
    const int status = QApplication::exec();
    desktop.leaveClipboard(quit);
    QApplication::exec();
    // Nothing else is worth waiting for: a held file's disk that does not answer, or a chime, would hold up the end.
    preferences.flush();
    std::_Exit(status);
}
