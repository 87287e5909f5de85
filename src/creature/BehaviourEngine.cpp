#include "creature/BehaviourEngine.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include "creature/Numbers.h"
#include "platform/Sounds.h"

namespace {

constexpr double kStartleSpeed = 2600;  // points per second
constexpr double kStartleMargin = 70;
constexpr double kStartleCooldown = 0.8;
constexpr double kMinMoveInterval = 0.0001;
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
constexpr double kMinYawnSpacing = 180;
constexpr double kMaxYawnSpacing = 330;
constexpr double kSlideHomeDelay = 5;
constexpr double kSlideHomeDuration = 0.5;
constexpr double kSlideHomeStep = 1.0 / 60;

// The hover zone has a minimum size, however small the shape is.
double zoneWidth(const NotchModel& model) {
    return std::max(NotchModel::kDefaultNotchWidth, model.shapeWidth());
}
double zoneHeight(const NotchModel& model) {
    return std::max(40.0, model.shapeHeight());
}

}  // namespace

BehaviourEngine::BehaviourEngine(NotchModel& model, Clock& clock, MainLoop& loop, Sounds& sounds,
                                 std::function<double()> random, std::function<void(const QString&)> trace)
    : model_(model),
      clock_(clock),
      loop_(loop),
      sounds_(sounds),
      random_(std::move(random)),
      trace_(std::move(trace)),
      lastMoveTime_(clock.uptime()),
      lastGazePublish_(-kNever),
      activeStreakStart_(clock.uptime()),
      lastStretch_(-kNever),
      nextYawn_(clock.uptime() + kFirstYawnAfter) {
    model_.lastActivity = clock.uptime();
}

void BehaviourEngine::watchSlides() {
    slidingSubscription_ = model_.sliding.deliver(loop_, [this](bool sliding) { slidingChanged(sliding); });
}

bool BehaviourEngine::inHoverZone(QPointF pointer, double margin) const {
    if (std::abs(pointer.x() - (model_.centerX + model_.slideX)) > margin + zoneWidth(model_) / 2) return false;
    if (pointer.y() < model_.screenTop - (margin + zoneHeight(model_))) return false;
    return pointer.y() <= model_.screenTop + 4;
}

void BehaviourEngine::pointerMoved(QPointF pointer) {
    const double now = clock_.uptime();
    startleAt(pointer, now - lastMoveTime_);
    lastCursor_ = pointer;
    lastMoveTime_ = now;
    model_.markActivity(clock_.uptime());

    const bool inside = inHoverZone(pointer, model_.hovering ? kStayMargin : kEnterMargin);
    const bool hoverChanges = inside != model_.hovering;
    publishGaze(pointer, now, hoverChanges);
    if (hoverChanges) setHovering(inside, pointer);
}

void BehaviourEngine::startleAt(QPointF pointer, double elapsed) {
    if (elapsed <= kMinMoveInterval || model_.toy != Toy::critter || startleCooldown_) return;
    const QPointF move = pointer - lastCursor_;
    if (std::hypot(move.x(), move.y()) / elapsed <= kStartleSpeed || !inHoverZone(pointer, kStartleMargin)) return;
    ++model_.startleCount;
    startleCooldown_ = true;
    cooldownEnd_ = loop_.after(kStartleCooldown, [this] { startleCooldown_ = false; });
}

void BehaviourEngine::publishGaze(QPointF pointer, double now, bool hoverChanges) {
    const bool due =
        now - lastGazePublish_ > kGazeInterval && (pointer - publishedCursor_).manhattanLength() > kGazeDistance;
    if (!hoverChanges && !due) return;
    lastGazePublish_ = now;
    publishedCursor_ = pointer;
    model_.cursor = pointer;
}

void BehaviourEngine::setHovering(bool inside, QPointF pointer) {
    trace_(QStringLiteral("hovering %1 → %2 at %3 zone=%4")
               .arg(formatBool(model_.hovering), formatBool(inside), formatNumbers({pointer.x(), pointer.y()}),
                    formatNumbers({zoneWidth(model_) * 0.5 + kEnterMargin, zoneHeight(model_) + kEnterMargin})));
    model_.withAnimation(commonSpring(), [&] { model_.hovering = inside; });
}

void BehaviourEngine::applicationActivated() {
    ++model_.glanceCount;
    model_.markActivity(clock_.uptime());
}

void BehaviourEngine::notchTapped() {
    if (model_.hidden) {
        model_.withAnimation(commonSpring(), [this] { model_.hidden = false; });
        ++model_.boopCount;
    } else if (model_.timerRung()) {
        if (clearDoneTimers) clearDoneTimers();
        ++model_.boopCount;
    } else if (model_.needsYou && model_.blockedTerminal && !model_.blockedTerminal->isEmpty()) {
        if (focusBlockedTerminal) focusBlockedTerminal();
    } else {
        ++model_.boopCount;
    }
    model_.markActivity(clock_.uptime());
}

void BehaviourEngine::timerRang() {
    ++model_.boopCount;
    if (!model_.isQuiet(clock_)) sounds_.play(QStringLiteral("Glass"));
}

void BehaviourEngine::yawn() {
    if (model_.yawning || model_.asleep || model_.toy == Toy::weather || model_.attending() || model_.isQuiet(clock_))
        return;
    model_.withAnimation(Animation::easeInOut(0.7), [this] { model_.yawning = true; });
    yawnEnd_ = loop_.after(
        1.6, [this] { model_.withAnimation(Animation::easeInOut(0.5), [this] { model_.yawning = false; }); });
}

void BehaviourEngine::yawnTick() {
    const double now = clock_.uptime();
    if (!model_.isSleepy(clock_) || now <= nextYawn_) return;
    nextYawn_ = now + (kMinYawnSpacing + random_() * (kMaxYawnSpacing - kMinYawnSpacing));
    yawn();
}

void BehaviourEngine::lifeTick() {
    followStreak();
    dozeOff();
}

void BehaviourEngine::followStreak() {
    const double now = clock_.uptime();
    if (model_.asleep || now - model_.lastActivity > kActivityWindow) {
        activeStreakStart_ = now;
        return;
    }
    if (now - activeStreakStart_ <= kStretchStreak || now - lastStretch_ <= kStretchSpacing || model_.isQuiet(clock_))
        return;
    lastStretch_ = now;
    ++model_.stretchCount;
    yawn();
}

void BehaviourEngine::dozeOff() {
    if (model_.toy != Toy::critter || model_.hovering || model_.asleep || model_.hidden) return;
    if (clock_.uptime() - model_.lastActivity <= kDozeOffAfter) return;
    model_.withAnimation(Animation::easeInOut(0.7), [this] { model_.asleep = true; });
}

void BehaviourEngine::slidingChanged(bool sliding) {
    slideHomeTimer_.cancel();
    if (!sliding && model_.slideX != 0.0) slideHomeTimer_ = loop_.after(kSlideHomeDelay, [this] { slideHome(); });
}

void BehaviourEngine::cancelSlideHome() {
    slideHomeTimer_.cancel();
    slideSteps_.cancel();
}

void BehaviourEngine::slideHome() {
    if (model_.slideX == 0.0) return;
    const double from = model_.slideX;
    const double started = clock_.uptime();
    slideSteps_ = loop_.every(kSlideHomeStep, [this, from, started] { stepHome(from, started); });
}

void BehaviourEngine::stepHome(double from, double started) {
    if (model_.sliding) {
        slideSteps_.cancel();
        return;
    }
    const double u = std::min((clock_.uptime() - started) / kSlideHomeDuration, 1.0);
    if (u < 1) {
        model_.slideX = from * std::pow(1 - u, 3);
        return;
    }
    slideSteps_.cancel();
    model_.slideX = 0.0;
}
