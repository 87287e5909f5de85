#include "creature/BehaviourEngine.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include "creature/Numbers.h"
#include "platform/EventMonitors.h"
#include "platform/Sounds.h"
#include "platform/Workspace.h"

namespace {

constexpr double kStartleSpeed = 2600;  // points per second
constexpr double kStartleMargin = 70;
constexpr double kStartleCooldown = 0.8;
constexpr double kMinimumMoveInterval = 0.0001;
constexpr double kEnterMargin = 14;
constexpr double kStayMargin = 24;
constexpr double kGazeInterval = 0.05;
constexpr double kGazeDistance = 3;
constexpr double kDozeOffAfter = 22;
constexpr double kActivityWindow = 300;
constexpr double kStretchStreak = 3000;
constexpr double kStretchSpacing = 3300;
constexpr double kNever = std::numeric_limits<double>::infinity();
constexpr double kFirstYawnAfter = 45;
constexpr double kYawnSpacingLeast = 180;
constexpr double kYawnSpacingMost = 330;
constexpr double kSlideHomeDelay = 5;
constexpr double kSlideHomeDuration = 0.5;
constexpr double kSlideHomeStep = 1.0 / 60;

// The hover zone never gets smaller than this, however small the shape is.
double zoneWidth(const NotchModel& m) {
    return std::max(185.0, m.shapeWidth());
}
double zoneHeight(const NotchModel& m) {
    return std::max(40.0, m.shapeHeight());
}

}  // namespace

BehaviourEngine::BehaviourEngine(NotchModel& model, Clock& clock, MainLoop& loop, Sounds& sounds,
                                 std::function<double()> random, std::function<void(const QString&)> trace)
    : m_(model),
      clock_(clock),
      loop_(loop),
      sounds_(sounds),
      random_(std::move(random)),
      trace_(std::move(trace)),
      lastMoveTime_(clock.uptime()),
      lastGazePublish_(-kNever),
      activeStreakStart_(clock.uptime()),
      lastStretch_(-kNever),
      nextYawn_(clock.uptime() + kFirstYawnAfter) {}

void BehaviourEngine::startTicks() {
    vitalsTick();
    vitalsTimer_ = loop_.every(15, [this] { vitalsTick(); });
    lifeTimer_ = loop_.every(4, [this] { lifeTick(); });
}

void BehaviourEngine::watchSlides() {
    slidingSubscription_ = m_.sliding.deliver(loop_, [this](bool sliding) { slidingChanged(sliding); });
}

bool BehaviourEngine::inHoverZone(QPointF pointer, double margin) const {
    if (std::abs(pointer.x() - (m_.centerX + m_.slideX)) > margin + zoneWidth(m_) / 2) return false;
    if (pointer.y() < m_.screenTop - (margin + zoneHeight(m_))) return false;
    return pointer.y() <= m_.screenTop + 4;
}

void BehaviourEngine::pointerMoved(QPointF pointer) {
    const double now = clock_.uptime();
    startleAt(pointer, now - lastMoveTime_);
    lastCursor_ = pointer;
    lastMoveTime_ = now;
    m_.markActivity();

    const bool inside = inHoverZone(pointer, m_.hovering ? kStayMargin : kEnterMargin);
    const bool hoverChanges = inside != m_.hovering;
    publishGaze(pointer, now, hoverChanges);
    if (hoverChanges) setHovering(inside, pointer);
}

void BehaviourEngine::startleAt(QPointF pointer, double elapsed) {
    if (elapsed <= kMinimumMoveInterval || m_.toy != Toy::critter || startleCooldown_) return;
    const QPointF way = pointer - lastCursor_;
    if (std::hypot(way.x(), way.y()) / elapsed <= kStartleSpeed || !inHoverZone(pointer, kStartleMargin)) return;
    ++m_.startleCount;
    startleCooldown_ = true;
    cooldownEnd_ = loop_.after(kStartleCooldown, [this] { startleCooldown_ = false; });
}

void BehaviourEngine::publishGaze(QPointF pointer, double now, bool hoverChanges) {
    const bool due =
        now - lastGazePublish_ > kGazeInterval && (pointer - publishedCursor_).manhattanLength() > kGazeDistance;
    if (!hoverChanges && !due) return;
    lastGazePublish_ = now;
    publishedCursor_ = pointer;
    m_.cursor = pointer;
}

void BehaviourEngine::setHovering(bool inside, QPointF pointer) {
    const auto word = [](bool value) { return value ? QStringLiteral("true") : QStringLiteral("false"); };
    trace_(QStringLiteral("hovering %1 → %2 at %3 zone=%4")
               .arg(word(m_.hovering), word(inside), formatNumbers({pointer.x(), pointer.y()}),
                    formatNumbers({zoneWidth(m_) * 0.5 + kEnterMargin, zoneHeight(m_) + kEnterMargin})));
    m_.withAnimation(commonSpring(), [&] { m_.hovering = inside; });
}

void BehaviourEngine::applicationActivated() {
    ++m_.glanceCount;
    m_.markActivity();
}

void BehaviourEngine::vitalsTick() {
    const double now = clock_.uptime();
    if (!m_.isSleepy() || now <= nextYawn_) return;
    nextYawn_ = now + (kYawnSpacingLeast + random_() * (kYawnSpacingMost - kYawnSpacingLeast));
    m_.yawn();
}

void BehaviourEngine::lifeTick() {
    ringTimers();
    followStreak();
    dozeOff();
}

void BehaviourEngine::ringTimers() {
    if (!m_.tickTimers()) return;
    ++m_.boopCount;
    if (!m_.quiet()) sounds_.play(QStringLiteral("Glass"));
}

void BehaviourEngine::followStreak() {
    const double now = clock_.uptime();
    if (m_.asleep || now - m_.lastActivity > kActivityWindow) {
        activeStreakStart_ = now;
        return;
    }
    if (now - activeStreakStart_ <= kStretchStreak || now - lastStretch_ <= kStretchSpacing || m_.quiet()) return;
    lastStretch_ = now;
    ++m_.stretchCount;
    m_.yawn();
}

void BehaviourEngine::dozeOff() {
    if (m_.toy != Toy::critter || m_.hovering || m_.asleep || m_.hidden) return;
    if (clock_.uptime() - m_.lastActivity <= kDozeOffAfter) return;
    m_.withAnimation(Animation::easeInOut(0.7), [this] { m_.asleep = true; });
}

void BehaviourEngine::slidingChanged(bool sliding) {
    slideHomeTimer_.cancel();
    if (!sliding && m_.slideX != 0.0) slideHomeTimer_ = loop_.after(kSlideHomeDelay, [this] { slideHome(); });
}

void BehaviourEngine::cancelSlideHome() {
    slideHomeTimer_.cancel();
    slideSteps_.cancel();
}

void BehaviourEngine::slideHome() {
    if (m_.slideX == 0.0) return;
    const double from = m_.slideX;
    const double started = clock_.uptime();
    slideSteps_ = loop_.every(kSlideHomeStep, [this, from, started] { stepHome(from, started); });
}

void BehaviourEngine::stepHome(double from, double started) {
    if (m_.sliding) {
        slideSteps_.cancel();
        return;
    }
    const double u = std::min((clock_.uptime() - started) / kSlideHomeDuration, 1.0);
    if (u < 1) {
        m_.slideX = from * std::pow(1 - u, 3);
        return;
    }
    slideSteps_.cancel();
    m_.slideX = 0.0;
}
