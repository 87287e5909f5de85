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

#include "app/AlertBox.h"
#include "app/AppDelegate.h"
#include "app/EndSignals.h"
#include "app/MainMenu.h"
#include "platform/linux/CanberraSounds.h"
#include "platform/linux/Desktop.h"
#include "platform/linux/FilePreferences.h"
#include "platform/linux/PathReferences.h"
#include "platform/linux/QtHttp.h"
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

/// How long startup waits for the stored preferences; on a slower disk they arrive later.
constexpr std::chrono::milliseconds kPreferencesTimeout(300);

/// Exits at once: an orderly exit would wait for threads that are blocked on a hung disk.
[[noreturn]] void end(int status) {
    std::fflush(nullptr);
    std::_Exit(status);
}

/// Arguments as argc and argv. Must outlive the QApplication, which keeps references to them.
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

/// Creates the QApplication without blocking on a hung disk or message bus. Null without a display.
std::unique_ptr<QApplication> startToolkit(const QStringList& arguments) {
    SilentFolders silentFolders;
    const bool chosen = choosePlatform();
    if (!isDisplayReachable()) return nullptr;
    SilentBusGuard busGuard;
    // Only a filtered set: QApplication exits over a malformed option of its own.
    static ArgumentVector own(toolkitArguments(arguments));
    auto application = std::make_unique<QApplication>(own.count, own.pointers.data());
    if (chosen) qunsetenv("QT_QPA_PLATFORM");
    busGuard.restoreEnvironment();
    silentFolders.reveal();
    restartWith(arguments);
    QApplication::setApplicationName(QStringLiteral("glimmet"));
    // Closing a menu must not quit the program; the panel does not count as a window here.
    QApplication::setQuitOnLastWindowClosed(false);
    return application;
}

/// The ports' implementations on this desktop. Needs the QApplication.
struct Habitat {
    /// `stored` has been read by now, unless its disk is hung.
    Habitat(QtMainLoop& mainLoop, FilePreferences& stored) : loop(mainLoop), preferences(stored) {}

    Ports ports(const std::function<void()>& quit);
    /// Takes the creature off the screen, hands over the clipboard and saves the preferences.
    void leave(const std::function<void()>& quit);

    QtMainLoop& loop;
    FilePreferences& preferences;
    SystemClock clock;
    ThreadQueue background, pictures, drops, jobs, covers;  // several, since a hung disk may block all threads of one
    ThreadQueue references{DiskLanes::kMaxThreads};
    ThreadSerialQueue playing;
    PathReferences files{references, loop};
    QtScreens screens{preferences, loop};
    CanberraSounds sounds{playing};
    QtPasteboard pasteboard;
    DesktopIcons icons{pictures, loop};
    DesktopSharing sharing{background, loop, pasteboard};
    QtHttp http{"Glimmet/" GLIMMET_VERSION};
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
            .players = *desktop.players,
            .mediaKeys = *desktop.mediaKeys,
            .http = http,
            .worker = worker,
            .disk = drops,
            .jobs = jobs,
            .covers = covers,
            .random = [] { return QRandomGenerator::global()->generateDouble(); },
            .popUp = popUpMenu,
            .closePopUp = closePopUp,
            .alert = showAlert,
            .quit = quit,
            .dataFolder = QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation)};
}

void Habitat::leave(const std::function<void()>& quit) {
    // A hung disk may keep the kernel from ending the process; the windows should be gone at once.
    for (QWindow* window : QGuiApplication::topLevelWindows()) window->hide();
    desktop.leaveClipboard(quit);
    QApplication::exec();
    // Wait for nothing else: a hung disk or a chime that is playing would delay the exit.
    preferences.close();
}

}  // namespace

int main(int argc, char** argv) {
    // Our threads rarely allocate at the same time; more arenas would only cost memory.
    ::mallopt(M_ARENA_MAX, 2);
    // The reader of our output may exit before we do.
    std::signal(SIGPIPE, SIG_IGN);
    QStringList arguments;
    for (int i = 0; i < argc; ++i) arguments.append(QString::fromLocal8Bit(argv[i]));
    const auto stop = [&arguments](const char* reason) {
        Diagnostics(arguments).log(QString::fromLatin1(reason));
        end(0);
    };
    const auto application = startToolkit(arguments);
    if (!application) stop("no screen to live on");

    // Printing the menu changes nothing, so it is allowed while another instance runs.
    const bool onlyPrints = arguments.contains(QStringLiteral("--menudump"));
    using Access = FilePreferences::Access;
    QtMainLoop loop;
    ThreadSerialQueue writing;
    FilePreferences preferences(FilePreferences::defaultPath(), onlyPrints ? Access::readOnly : Access::exclusive,
                                writing, loop);
    preferences.onTaken = [&stop] { stop("already running for this user"); };
    preferences.waitUntilRead(kPreferencesTimeout);

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
