#include <malloc.h>

#include <QApplication>
#include <QRandomGenerator>
#include <QStandardPaths>
#include <QWindow>
#include <chrono>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <vector>

#include "app/AppDelegate.h"
#include "app/EndSignals.h"
#include "app/MainMenu.h"
#include "platform/linux/CanberraSounds.h"
#include "platform/linux/Desktop.h"
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
#include "platform/linux/freedesktop/DesktopIcons.h"
#include "platform/linux/freedesktop/DesktopSharing.h"

namespace {

/// How long the start waits for what is stored; it comes later where the disk takes longer.
constexpr std::chrono::milliseconds kPatience(300);

/// Ends at once: threads that wait for a disk that does not answer would hold up an end in order.
[[noreturn]] void end(int status) {
    std::fflush(nullptr);
    std::_Exit(status);
}

/// Arguments in the form that C programs get them in. The toolkit refers to them for as long as it lives.
struct ArgumentVector {
    explicit ArgumentVector(const QStringList& arguments) : count(int(arguments.size())) {
        for (const QString& argument : arguments) bytes.append(argument.toLocal8Bit());
        for (QByteArray& argument : bytes) pointers.push_back(argument.data());
        pointers.push_back(nullptr);
    }

    int count;
    QList<QByteArray> bytes;
    std::vector<char*> pointers;
};

/// The toolkit's application, which neither a disk nor a message bus that does not answer holds up. Null without a
/// screen.
std::unique_ptr<QApplication> startToolkit(const QStringList& arguments) {
    SilentFolders silentFolders;
    const bool chosen = choosePlatform();
    if (!displayReachable()) return nullptr;
    SilentBusGuard busGuard;
    // It would end the program over an option of its own that it cannot follow.
    static ArgumentVector own(toolkitArguments(arguments));
    auto application = std::make_unique<QApplication>(own.count, own.pointers.data());
    if (chosen) qunsetenv("QT_QPA_PLATFORM");
    busGuard.restoreEnvironment();
    silentFolders.reveal();
    restartWith(arguments);
    QApplication::setApplicationName(QStringLiteral("glimmet"));
    // The panel is no window in this sense: closing a menu must not end the program.
    QApplication::setQuitOnLastWindowClosed(false);
    return application;
}

/// What the creature lives on in this desktop. Needs the application.
struct Habitat {
    /// `stored` has been read if its disk answers.
    Habitat(QtMainLoop& mainLoop, FilePreferences& stored) : loop(mainLoop), preferences(stored) {}

    Ports ports(const std::function<void()>& quit);
    /// Takes the creature off the screen, and saves what it leaves behind.
    void leave(const std::function<void()>& quit);

    QtMainLoop& loop;
    FilePreferences& preferences;
    SystemClock clock;
    ThreadQueue background, pictures, drops, jobs;  // a dead disk may hold up all of a queue's threads
    ThreadQueue references{DiskLanes::kMaxThreads};
    ThreadSerialQueue playing;
    PathReferences files{references, loop};
    QtScreens screens{preferences, loop};
    CanberraSounds sounds{playing};
    QtPasteboard pasteboard;
    DesktopIcons icons{pictures, loop};
    DesktopSharing sharing{background, loop, pasteboard};
    WorkerProcess worker{QCoreApplication::applicationDirPath() + QStringLiteral("/glimmet-worker")};
    const Desktop desktop = makeDesktop(loop, background);
};

Ports Habitat::ports(const std::function<void()>& quit) {
    const auto popUpMenu = [this](const QList<MenuItem>& items, QPointF at) {
        popUp(items, toQt(at).toPoint(), desktop.blendsWindows());
    };
    return {.clock = clock,
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
            .popUp = popUpMenu,
            .closePopUp = closePopUp,
            .quit = quit,
            .dataFolder = QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation)};
}

void Habitat::leave(const std::function<void()>& quit) {
    // A disk that does not answer may keep the kernel from ending the process; nobody shall see it until then.
    for (QWindow* window : QGuiApplication::topLevelWindows()) window->hide();
    desktop.leaveClipboard(quit);
    QApplication::exec();
    // Nothing else is worth waiting for: a held file's disk that does not answer, or a chime, would hold up the end.
    preferences.close();
}

}  // namespace

int main(int argc, char** argv) {
    // Threads that hardly ever meet need no heap each.
    ::mallopt(M_ARENA_MAX, 2);
    // Whoever read what this program writes may end before it.
    std::signal(SIGPIPE, SIG_IGN);
    QStringList arguments;
    for (int i = 0; i < argc; ++i) arguments.append(QString::fromLocal8Bit(argv[i]));
    const auto stop = [&arguments](const char* reason) {
        Diagnostics(arguments).log(QString::fromLatin1(reason));
        end(0);
    };
    const auto application = startToolkit(arguments);
    if (!application) stop("no screen to live on");

    // Printing the menu changes nothing, and may be done beside a creature that lives.
    const bool onlyPrints = arguments.contains(QStringLiteral("--menudump"));
    using Access = FilePreferences::Access;
    QtMainLoop loop;
    ThreadSerialQueue writing;
    FilePreferences preferences(FilePreferences::defaultPath(), onlyPrints ? Access::readOnly : Access::exclusive,
                                writing, loop);
    preferences.onTaken = [&stop] { stop("already running for this user"); };
    preferences.waitUntilRead(kPatience);

    Habitat habitat(loop, preferences);
    const auto quit = [] { QCoreApplication::quit(); };
    const EndSignals endSignals(quit);
    MainMenu mainMenu(*application, quit);
    AppDelegate delegate(habitat.ports(quit), arguments);
    if (delegate.launch() != AppDelegate::Launch::running) end(0);
    const int status = QApplication::exec();
    habitat.leave(quit);
    end(status);
}
