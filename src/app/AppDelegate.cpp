#include "app/AppDelegate.h"

#include <cstdio>

#include "creature/Numbers.h"
#include "platform/EventMonitors.h"
#include "platform/Workspace.h"

namespace {

constexpr double kMenuMargin = 14;

}  // namespace

AppDelegate::AppDelegate(const Ports& ports, const QStringList& arguments)
    : ports_(ports),
      arguments_(arguments),
      diagnostics_(arguments),
      m_(ports.clock, ports.loop, ports.preferences, ports.files, ports.dataFolder),
      root_(m_, ports.clock, ports.loop, ports.random),
      panel_(m_, root_, ports.window, ports.clock, ports.loop),
      behaviour_(m_, ports.clock, ports.loop, ports.sounds, ports.random,
                 [this](const QString& line) { diagnostics_.trace(line); }),
      placement_(m_, ports.screens, ports.loop),
      commands_(m_, ports.clock, ports.preferences, ports.workspace),
      capsLock_(m_),
      agents_(m_, ports.loop, ports.workspace),
      flags_(m_, ports.loop, [this] { panel_.setIgnoresMouseEvents(false); }),
      screenTest_(m_, ports.loop, placement_, panel_) {
    connect();
}

void AppDelegate::connect() {
    behaviour_.updateMousePassThrough = [this] { panel_.updateMousePassThrough(); };
    commands_.updateMousePassThrough = [this] { panel_.updateMousePassThrough(); };
    commands_.quit = ports_.quit;
    m_.onFocusBlockedTerminal = [this] { agents_.focusBlockedTerminal(); };
}

AppDelegate::Launch AppDelegate::launch() {
    if (!placement_.measure()) {
        diagnostics_.log(QStringLiteral("no screen to live on"));
        return Launch::noScreen;
    }
    m_.loadShelf();
    panel_.show(placement_.homeFrame());
    m_.loadHeld();
    placement_.follow(panel_, behaviour_);
    behaviour_.watchSlides();
    if (arguments_.contains(QStringLiteral("--menudump"))) {
        dumpMenu();
        return Launch::menuDumped;
    }
    const FlagEffects effects = flags_.apply(arguments_);
    if (effects.screenTest) screenTest_.start();
    if (!effects.demo) startSensors();
    logStart();
    return Launch::running;
}

void AppDelegate::startSensors() {
    behaviour_.installMonitors(ports_.monitors, ports_.workspace);
    ports_.monitors.onRightMouseDown = [this](QPointF pointer) { rightMouseDown(pointer); };
    ports_.monitors.onPressElsewhere = ports_.closePopUp;
    ports_.monitors.onCapsLockChanged = [this](bool on) { capsLock_.capsChanged(on); };
    ports_.monitors.start();
    m_.capsOn = ports_.monitors.capsLock();
    ports_.workspace.start();
    behaviour_.startTicks();
    agents_.start();
}

void AppDelegate::rightMouseDown(QPointF pointer) {
    if (!behaviour_.inHoverZone(pointer, kMenuMargin)) return;
    panel_.letGo();
    ports_.popUp(commands_.menu(), pointer);
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
