#include "app/AppDelegate.h"

#include <cstdio>

#include "creature/Numbers.h"
#include "platform/EventMonitors.h"
#include "platform/Preferences.h"
#include "platform/ScreenLock.h"
#include "platform/Workspace.h"

namespace {

constexpr double kMenuMargin = 14;
constexpr double kSharingAbove = 6;  // points above the panel's lower edge

}  // namespace

AppDelegate::AppDelegate(const Ports& ports, const QStringList& arguments)
    : ports_(ports),
      arguments_(arguments),
      diagnostics_(arguments),
      m_(ports.clock, ports.loop,
         {ports.preferences, ports.files, ports.worker, ports.jobs, ports.pasteboard, ports.dataFolder}),
      drops_(m_, ports.clock, ports.loop, ports.dragPasteboard, ports.disk),
      chipActions_(m_, ports.workspace, ports.pasteboard, ports.sharing),
      root_(m_, viewPorts(), ports.clock, ports.loop, ports.random),
      panel_(m_, root_, drops_, ports.window, ports.clock, ports.loop),
      behaviour_(m_, ports.clock, ports.loop, ports.sounds, ports.random,
                 [this](const QString& line) { diagnostics_.trace(line); }),
      placement_(m_, ports.screens, ports.loop),
      commands_(m_, ports.clock, ports.preferences, ports.workspace),
      capsLock_(m_),
      agents_(m_, ports.loop, ports.disk, ports.workspace),
      flags_(m_, ports.loop, arguments),
      screenTest_(m_, ports.loop, placement_, panel_),
      shelfTest_(m_, ports.loop, drops_) {
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
        if (!m_.screenLocked) ports_.monitors.lookForPointer();
    };
    ports_.preferences.onSaveFailed = [this] { ++m_.worryCount; };
    m_.onFocusBlockedTerminal = [this] { agents_.focusBlockedTerminal(); };
}

ViewPorts AppDelegate::viewPorts() {
    return {.icons = ports_.icons,
            .trace = [this](const QString& line) { diagnostics_.trace(line); },
            .notchTapped = [this] { m_.notchTapped(); },
            .use = [this](const HeldThing& thing) { chipActions_.use(thing); },
            .remove = [this](const HeldThing& thing) { chipActions_.remove(thing); },
            .menu = [this](const HeldThing& thing) { return chipActions_.menu(thing); },
            .showX = arguments_.contains(QStringLiteral("--showx"))};
}

AppDelegate::Launch AppDelegate::launch() {
    if (!placement_.measure()) {
        diagnostics_.log(QStringLiteral("no screen to live on"));
        return Launch::noScreen;
    }
    ports_.preferences.whenRead([this] { m_.loadShelf(); });
    watchPointer();
    lockChanged();
    panel_.show(placement_.homeFrame());
    if (const auto paths = flags_.value("--droptest=")) shelfTest_.startDrop(*paths);
    ports_.preferences.whenRead([this, late = !ports_.preferences.isRead()] {
        m_.loadHeld();
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

// What is dragged, and the chips, which can be touched in the demo too.
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
    m_.capsOn = ports_.monitors.capsLock();
    ports_.workspace.start();
    behaviour_.startTicks();
    drops_.takeLeft();
    agents_.start();
}

void AppDelegate::lockChanged() {
    m_.screenLocked = ports_.screenLock.locked();
    if (!m_.screenLocked) return;
    ports_.closePopUp();
    panel_.letGo();
    drops_.refuse();
}

void AppDelegate::popUp(const QList<MenuItem>& items, QPointF at) {
    if (!m_.screenLocked) ports_.popUp(items, at);
}

void AppDelegate::rightMouseDown(QPointF pointer) {
    if (!behaviour_.inHoverZone(pointer, kMenuMargin)) return;
    panel_.letGo();
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
    diagnostics_.log(
        QStringLiteral("notch=%1 top=%2 toy=%3").arg(formatRect(notch), formatNumber(m_.screenTop), rawValue(m_.toy)));
}
