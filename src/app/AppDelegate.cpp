#include "app/AppDelegate.h"

#include <cstdio>

#include "creature/Numbers.h"
#include "platform/EventMonitors.h"
#include "platform/Http.h"
#include "platform/MediaKeys.h"
#include "platform/Players.h"
#include "platform/Preferences.h"
#include "platform/ScreenLock.h"
#include "platform/Workspace.h"

namespace {

constexpr double kMenuMargin = 14;
constexpr double kSharingAbove = 6;     // points above the panel's lower edge
constexpr double kVitalsInterval = 15;  // seconds
constexpr double kLifeInterval = 4;

}  // namespace

AppDelegate::AppDelegate(const Ports& ports, const QStringList& arguments)
    : ports_(ports),
      arguments_(arguments),
      diagnostics_(arguments),
      shelf_(model_, {ports.clock, ports.loop, ports.preferences, ports.files, ports.worker, ports.jobs,
                      ports.pasteboard, ports.dataFolder}),
      drops_(model_, shelf_, ports.clock, ports.loop, ports.dragPasteboard, ports.disk),
      chipActions_(model_, shelf_, ports.workspace, ports.sharing),
      root_(model_, viewPorts(), ports.clock, ports.loop, ports.random),
      panel_(model_, root_, drops_, ports.window, ports.clock, ports.loop),
      behaviour_(model_, ports.clock, ports.loop, ports.sounds, ports.random,
                 [this](const QString& line) { diagnostics_.trace(line); }),
      placement_(model_, ports.screens, ports.loop),
      commands_(model_, shelf_, ports.clock, ports.preferences, ports.workspace, switches()),
      capsLock_(model_),
      agents_(model_, ports.loop, ports.disk, ports.workspace),
      artwork_(ports.loop, ports.http, ports.preferences, ports.worker, ports.covers),
      nowPlaying_(model_, ports.loop, ports.players, artwork_),
      musicCommands_(model_, ports.clock, ports.loop, nowPlaying_, ports.players, ports.mediaKeys),
      flags_(model_, shelf_, behaviour_, ports.loop, arguments),
      screenTest_(model_, ports.loop, placement_, panel_),
      shelfTest_(model_, shelf_, ports.loop, drops_) {
    connect();
}

void AppDelegate::connect() {
    // Below the panel, in its middle.
    chipActions_.showSharing = [this](const QList<MenuItem>& items) {
        const QRectF panel = panel_.frame();
        popUp(items, {panel.center().x() - 1, panel.top() + kSharingAbove});
    };
    commands_.quit = ports_.quit;
    ports_.screenLock.onChange = [this] { lockChanged(); };
    root_.onBreath = [this] {
        if (!model_.screenLocked) ports_.monitors.lookForPointer();
    };
    ports_.preferences.onSaveFailed = [this] { ++model_.worryCount; };
    behaviour_.clearDoneTimers = [this] { shelf_.clearDoneTimers(); };
    musicCommands_.alert = ports_.alert;
    musicCommands_.openSettings = [this] { ports_.workspace.openAccessibilitySettings(); };
    behaviour_.focusBlockedTerminal = [this] { agents_.focusBlockedTerminal(); };
}

ViewPorts AppDelegate::viewPorts() {
    return {.icons = ports_.icons,
            .trace = [this](const QString& line) { diagnostics_.trace(line); },
            .notchTapped = [this] { behaviour_.notchTapped(); },
            .use = [this](const HeldThing& thing) { chipActions_.use(thing); },
            .remove = [this](const HeldThing& thing) { chipActions_.remove(thing); },
            .menu = [this](const HeldThing& thing) { return chipActions_.menu(thing); },
            .onMusicCommand = [this](const QString& word) { musicCommands_.runMusicCommand(word); },
            .showX = arguments_.contains(QStringLiteral("--showx"))};
}

AppDelegate::Launch AppDelegate::launch() {
    if (!placement_.measure()) {
        diagnostics_.log(QStringLiteral("no screen to live on"));
        return Launch::noScreen;
    }
    ports_.preferences.whenRead([this] { shelf_.loadShelf(); });
    watchPointer();
    lockChanged();
    panel_.show(placement_.homeFrame());
    if (const auto paths = flags_.value("--droptest=")) shelfTest_.startDrop(*paths);
    ports_.preferences.whenRead([this, late = !ports_.preferences.isRead()] {
        shelf_.loadHeld();
        if (late) placement_.screensChanged();  // a notch of the user's own
    });
    placement_.follow(panel_, behaviour_);
    behaviour_.watchSlides();
    if (arguments_.contains(QStringLiteral("--menudump"))) {
        dumpMenu();
        return Launch::menuDumped;
    }
    const FlagEffects effects = flags_.apply();
    if (effects.screenTest) screenTest_.start();
    if (effects.chewTest) shelfTest_.startChew(*effects.chewTest);
    demo_ = effects.demo;
    if (!demo_) startSensors();
    ports_.monitors.start();
    logStart();
    return Launch::running;
}

// Drags and chips work in demo mode too.
void AppDelegate::watchPointer() {
    ports_.monitors.onLeftMouseDragged = [this](QPointF pointer) { drops_.dragMoved(pointer); };
    ports_.monitors.onLeftMouseUp = [this](QPointF) { drops_.dragEnded(); };
    ports_.monitors.onMouseMoved = [this](QPointF pointer) {
        if (!demo_) behaviour_.pointerMoved(pointer);
        panel_.pointerMoved(pointer);
    };
    ports_.monitors.onRightMouseDown = panel_.onRightPress = [this](QPointF pointer) { rightMouseDown(pointer); };
    ports_.monitors.onPressElsewhere = ports_.closePopUp;
}

void AppDelegate::startSensors() {
    ports_.workspace.onApplicationActivated = [this] { behaviour_.applicationActivated(); };
    ports_.monitors.onCapsLockChanged = [this](bool on) { capsLock_.capsChanged(on); };
    model_.capsOn = ports_.monitors.capsLock();
    watchScrolling();
    ports_.workspace.start();
    startTicks();
    drops_.takeLeftovers();
    agents_.start();
    ports_.preferences.whenRead([this] { commands_.startSwitches(); });
}

// Only while there is something to seek in.
void AppDelegate::watchScrolling() {
    ports_.monitors.onScroll = [this](QPointF pointer, double points) {
        musicCommands_.scrollSeek(points, behaviour_.inHoverZone(pointer, 0));
    };
    scrolling_ = model_.objectDidChange.subscribe([this](const auto&) {
        const bool wanted = model_.hovering && model_.musicPlaying;
        ports_.monitors.wantScroll(wanted);
        if (!wanted) musicCommands_.scrollSeek(0, false);
    });
}

void AppDelegate::startTicks() {
    vitalsTick();
    vitalsTimer_ = ports_.loop.every(kVitalsInterval, [this] { vitalsTick(); });
    lifeTimer_ = ports_.loop.every(kLifeInterval, [this] { lifeTick(); });
}

void AppDelegate::vitalsTick() {
    behaviour_.yawnTick();
}

void AppDelegate::lifeTick() {
    if (shelf_.tickTimers()) behaviour_.timerRang();
    behaviour_.lifeTick();
}

// The parts that the first two switch do not exist yet.
QList<Switch> AppDelegate::switches() {
    return {{QStringLiteral("Watch Downloads"), QStringLiteral("glimmet.watchDownloads"), {}, {}},
            {QStringLiteral("Meeting whispers"), QStringLiteral("glimmet.whispers"), {}, {}},
            {QStringLiteral("Music in the notch"), QStringLiteral("glimmet.music"),
             [this] { nowPlaying_.startMusicWatch(); }, [this] { nowPlaying_.stopMusicWatch(); }}};
}

void AppDelegate::lockChanged() {
    model_.screenLocked = ports_.screenLock.locked();
    if (!model_.screenLocked) return;
    ports_.closePopUp();
    panel_.cancelPress();
    drops_.refuse();
}

void AppDelegate::popUp(const QList<MenuItem>& items, QPointF at) {
    if (!model_.screenLocked) ports_.popUp(items, at);
}

void AppDelegate::rightMouseDown(QPointF pointer) {
    if (!behaviour_.inHoverZone(pointer, kMenuMargin)) return;
    panel_.cancelPress();
    QList<MenuItem> menu = panel_.menuAt(pointer);
    if (menu.isEmpty() && !demo_) menu = commands_.menu();
    if (!menu.isEmpty()) popUp(menu, pointer);
}

void AppDelegate::dumpMenu() {
    for (const QString& line : describeMenu(commands_.menu())) std::printf("%s\n", line.toUtf8().constData());
    std::fflush(stdout);
}

void AppDelegate::logStart() const {
    const QRectF notch = placement_.notch();
    diagnostics_.log(QStringLiteral("notch=%1 top=%2 toy=%3")
                         .arg(formatRect(notch), formatNumber(model_.screenTop), rawValue(model_.toy)));
}
