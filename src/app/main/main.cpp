#include <malloc.h>

#include <QApplication>
#include <QFile>
#include <QRandomGenerator>
#include <QStandardPaths>
#include <QWindow>
#include <chrono>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <vector>

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
#include "platform/linux/SessionRestart.h"
#include "platform/linux/SilentBus.h"
#include "platform/linux/SilentFolders.h"
#include "platform/linux/SystemClock.h"
#include "platform/linux/ThreadQueues.h"
#include "platform/linux/WorkerProcess.h"

namespace {

/// How long the start waits for what is stored; it comes later where the disk takes longer.
constexpr std::chrono::milliseconds kPatience(300);

/// Ends at once: threads that wait for a disk that does not answer would hold up an end in order.
[[noreturn]] void end(int status) {
    std::fflush(nullptr);
    std::_Exit(status);
}

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
    SilentFolders silentFolders;
    const bool chosen = choosePlatform();
    if (!displayReachable()) {
        Diagnostics(arguments).log(QStringLiteral("no screen to live on"));
        end(0);
    }
    SilentBusGuard busGuard;
    // The toolkit gets nothing else: it would end the program over an option of its own that it cannot follow.
    QList<QByteArray> forToolkit;
    for (const QString& argument : toolkitArguments(arguments)) forToolkit.append(argument.toLocal8Bit());
    std::vector<char*> toolkitArgv;
    for (QByteArray& argument : forToolkit) toolkitArgv.push_back(argument.data());
    toolkitArgv.push_back(nullptr);
    int toolkitArgc = int(forToolkit.size());
    QApplication application(toolkitArgc, toolkitArgv.data());
    if (chosen) qunsetenv("QT_QPA_PLATFORM");
    busGuard.restoreEnvironment();
    silentFolders.reveal();
    restartWith(arguments);
    QApplication::setApplicationName(QStringLiteral("glimmet"));
    // The panel is no window in this sense: closing a menu must not end the program.
    QApplication::setQuitOnLastWindowClosed(false);
    const auto quit = [] { QCoreApplication::quit(); };

    SystemClock clock;
    QtMainLoop loop;
    ThreadQueue background, pictures, drops, jobs;  // a dead disk may hold up all of a queue's threads
    ThreadQueue references(DiskLanes::kMostThreads);
    ThreadSerialQueue writing;
    ThreadSerialQueue playing;
    // Printing the menu changes nothing, and may be done beside a creature that lives.
    const bool onlyPrints = arguments.contains(QStringLiteral("--menudump"));
    using Access = FilePreferences::Access;
    FilePreferences preferences(FilePreferences::defaultPath(), onlyPrints ? Access::readOnly : Access::exclusive,
                                writing, loop);
    preferences.onTaken = [&arguments] {
        Diagnostics(arguments).log(QStringLiteral("already running for this user"));
        end(0);
    };
    preferences.waitUntilRead(kPatience);
    PathReferences files(references, loop);
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
    if (delegate.launch() != AppDelegate::Launch::running) end(0);
    const int status = QApplication::exec();
    // A disk that does not answer may keep the kernel from ending the process; nobody shall see it until then.
    for (QWindow* window : QGuiApplication::topLevelWindows()) window->hide();
    desktop.leaveClipboard(quit);
    QApplication::exec();
    // Nothing else is worth waiting for: a held file's disk that does not answer, or a chime, would hold up the end.
    preferences.close();
    end(status);
}
