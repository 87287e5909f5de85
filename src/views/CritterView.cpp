#include "views/CritterView.h"

#include <cmath>
#include <limits>
#include <utility>

#include "views/Colors.h"

// The face's states and where they send its parts; CritterPicture.cpp draws it.

namespace {

constexpr double kBlinkEvery = 3.4;  // seconds
constexpr double kShelfGap = 12;     // points below the eyes
constexpr double kClosing = 0.17;    // seconds that the mouth takes to shut over something
constexpr double kGulping = 0.24;
constexpr double kGazeReach = 160;  // points at which the pupils have gone all their way

}  // namespace

CritterView::CritterView(NotchModel& model, const ChipPorts& ports, Clock& clock, MainLoop& loop,
                         std::function<void()> changed)
    : m_(model),
      clock_(clock),
      loop_(loop),
      changed_(std::move(changed)),
      delays_(loop),
      seenGlances_(m_.glanceCount),
      seenStartles_(m_.startleCount),
      seenWorries_(m_.worryCount),
      seenSpawns_(m_.spawnCount),
      seenLookArounds_(m_.lookAroundCount),
      seenStretches_(m_.stretchCount),
      seenSwallows_(m_.swallowCount),
      seenCharging_(m_.charging),
      shelf_(model, ports, clock, loop, changed_) {
    blinkTimer_ = loop_.every(kBlinkEvery, [this] { blink(); });
    update(std::nullopt);
}

void CritterView::disappear() {
    blinkTimer_.cancel();
    swallowStep_.cancel();
    delays_.cancel();
}

void CritterView::update(const std::optional<Animation>& how) {
    const double now = clock_.uptime();
    if (!m_.dragNear || m_.dropTargeted) fed_ = false;
    aimLayout(how, now);
    aimEyes(how, now);
    mouth_.aim(mouthState(), how, now);
    shelf_.update(how, padding_.target() + eyeSize_.target() + kShelfGap);
    aimGlyph(how, now);
    // Last, because a reaction updates again with a curve of its own.
    react();
}

void CritterView::react() {
    const auto grew = [](int& seen, int present) { return std::exchange(seen, present) != present; };
    if (grew(seenGlances_, m_.glanceCount)) blink();
    if (grew(seenStartles_, m_.startleCount)) startle();
    if (grew(seenWorries_, m_.worryCount)) worry();
    if (grew(seenSpawns_, m_.spawnCount)) glanceDown();
    if (grew(seenLookArounds_, m_.lookAroundCount)) lookAround();
    if (grew(seenStretches_, m_.stretchCount)) stretch();
    if (grew(seenSwallows_, m_.swallowCount)) swallow();
}

void CritterView::blink() {
    if (m_.asleep) return;
    const auto set = [this](bool value) {
        blink_ = value;
        update(std::nullopt);
        changed_();
    };
    set(true);
    delays_.after(0.12, [set] { set(false); });
}

void CritterView::startle() {
    if (m_.isQuiet(clock_)) return;
    const auto set = [this](bool value) {
        startled_ = value;
        update(std::nullopt);
        changed_();
    };
    set(true);
    delays_.after(0.45, [set] { set(false); });
}

void CritterView::worry() {
    const auto set = [this](bool value, const Animation& how) {
        worried_ = value;
        update(how);
        changed_();
    };
    set(true, Animation::easeOut(0.25));
    delays_.after(1.4, [set] { set(false, Animation::easeInOut(0.5)); });
}

void CritterView::swallow() {
    if (m_.isQuiet(clock_)) return;
    fed_ = m_.dragNear && !m_.dropTargeted;
    setSwallow(Swallow::closing);
    swallowStep_ = loop_.after(kClosing, [this] { gulp(); });
}

void CritterView::gulp() {
    setSwallow(Swallow::gulping);
    swallowStep_ = loop_.after(kGulping, [this] { setSwallow(Swallow::none); });
}

void CritterView::setSwallow(Swallow step) {
    swallow_ = step;
    update(std::nullopt);
    changed_();
}

void CritterView::glanceDown() {
    if (m_.isQuiet(clock_)) return;
    const auto set = [this](bool value, const Animation& how) {
        glancingDown_ = value;
        update(how);
        changed_();
    };
    set(true, Animation::easeOut(0.3));
    delays_.after(0.9, [set] { set(false, Animation::easeInOut(0.45)); });
}

void CritterView::lookAround() {
    if (m_.isQuiet(clock_)) return;
    const auto look = [this](int phase, double duration) {
        lookPhase_ = phase;
        update(Animation::easeInOut(duration));
        changed_();
    };
    look(1, 0.22);
    delays_.after(0.5, [look] { look(2, 0.3); });
    delays_.after(1.05, [look] { look(0, 0.3); });
}

void CritterView::stretch() {
    const auto set = [this](bool value) {
        stretchGlyph_ = value;
        update(std::nullopt);
        changed_();
    };
    set(true);
    delays_.after(6, [set] { set(false); });
}

void CritterView::aimLayout(const std::optional<Animation>& how, double now) {
    const bool open = m_.attending();
    padding_.aim(open ? 42 : 36, how, now);
    eyeSize_.aim(open ? 30 : 17, how, now);
    spacing_.aim(open ? 22 : 13, how, now);
    width_.aim(m_.shapeWidth(), how, now);
    startle_.aim(startled_ ? 1 : 0, Animation::interpolatingSpring(1, 300, 12), now);
    const bool gulps = swallow_ == Swallow::gulping;
    dip_.aim(gulps ? 1 : 0, gulps ? Animation::easeOut(0.12) : Animation::interpolatingSpring(1, 300, 16), now);

    const bool chargeChanged = std::exchange(seenCharging_, m_.charging) != m_.charging;
    cheeks_.aim(m_.charging ? 1 : 0, chargeChanged ? Animation::easeInOut(0.9) : how, now);
    cheekSize_.aim(open ? 13 : 9, how, now);
    cheekGap_.aim(open ? 74 : 46, how, now);
    cheekDrop_.aim(open ? 8 : 5, how, now);

    sleep_.aim(m_.asleep ? 1 : 0, how, now);
    arcWidth_.aim(open ? 28 : 16, how, now);
    arcHeight_.aim(open ? 10 : 7, how, now);
    arcDroop_.aim(open ? 9 : 6, how, now);
    zzz_.aim(open ? 1 : 0, how, now);

    // It has its place in front of the mouth, and leaves it to a wide one.
    const bool badge =
        m_.hasHeld() && !m_.hovering && !m_.dragNear && !m_.dropTargeted && !m_.yawning && swallow_ == Swallow::none;
    badge_.aim(badge ? 1 : 0, how.value_or(Animation::easeOut(0.12)), now);
    if (badge) setBadge(m_.heldCount());
}

void CritterView::aimEyes(const std::optional<Animation>& how, double now) {
    const auto curve = eyeCurve(how);
    const bool open = m_.attending();
    Eye::Pose pose{.diameter = open ? 30.0 : 17.0,
                   .pupil = open ? 13.0 : 8.0,
                   .lid = lidClosure(),
                   .gaze = gaze(-1),
                   .shut = eyesShut()};
    leftEye_.aim(pose, curve, now);
    pose.gaze = gaze(+1);
    rightEye_.aim(pose, curve, now);
}

std::optional<Animation> CritterView::eyeCurve(const std::optional<Animation>& how) {
    const EyeCauses was = std::exchange(eyeCauses_, {m_.cameraInUse, blink_, m_.isSleepy(clock_), m_.yawning, worried_,
                                                     glancingDown_, swallow_ == Swallow::gulping});
    if (was.camera != eyeCauses_.camera) return Animation::easeInOut(0.45);
    if (was.blink != eyeCauses_.blink) return Animation::easeOut(0.09);
    if (was.sleepy != eyeCauses_.sleepy) return Animation::easeInOut(0.5);
    if (was.yawning != eyeCauses_.yawning) return Animation::easeInOut(0.6);
    if (was.worried != eyeCauses_.worried) return Animation::easeOut(0.3);
    if (was.glancing != eyeCauses_.glancing) return Animation::easeOut(0.35);
    if (was.gulping != eyeCauses_.gulping) return Animation::easeOut(0.06);
    if (swallow_ == Swallow::closing) return Animation::easeOut(0.12);
    return how;
}

bool CritterView::eyesShut() const {
    return m_.cameraInUse || swallow_ == Swallow::gulping;
}

double CritterView::lidClosure() const {
    if (m_.cameraInUse || blink_) return 1;
    if (m_.dropTargeted || m_.dragNear || worried_) return 0.02;
    if (m_.capsOn) return 0.04;
    if (m_.chewing) return 0.55;
    if (m_.yawning) return 0.8;
    if (m_.isQuiet(clock_)) return 0.4;
    return m_.isSleepy(clock_) ? 0.46 : 0.12;
}

QPointF CritterView::gaze(double side) const {
    if (m_.isQuiet(clock_)) return {0, 0};
    if (worried_) return {4.5, -2.5};
    if (swallow_ != Swallow::none) return {0, m_.attending() ? 5.0 : 3.0};
    if (glancingDown_) return {0, 5.5};
    if (lookPhase_ == 1) return {-5, 0.5};
    if (lookPhase_ == 2) return {5, 0.5};
    if (std::abs(m_.slideX) > 30) return {m_.slideX > 0 ? -4.5 : 4.5, 0.5};

    const bool open = m_.attending();
    const QPointF eye(m_.centerX + side * (open ? 52 : 30) / 2, m_.screenTop - (open ? 57 : 44.5));
    const QPointF v = m_.cursor.get() - eye;
    const double d = std::hypot(v.x(), v.y());
    if (d < 0.5) return {0, 0};
    const double k = std::min(d / kGazeReach, 1.0) * (open ? 6.5 : 3);
    return {v.x() / d * k, -v.y() / d * k};
}

Mouth::State CritterView::mouthState() const {
    if (swallow_ == Swallow::closing) return Mouth::State::full;
    if (swallow_ == Swallow::gulping) return Mouth::State::gulping;
    if (m_.dropTargeted || (m_.dragNear && !fed_)) return Mouth::State::eating;
    if (m_.yawning) return Mouth::State::yawning;
    if (badge_.target() == 1) return Mouth::State::covered;
    return m_.downloading || m_.chewing ? Mouth::State::munching : Mouth::State::resting;
}

void CritterView::aimGlyph(const std::optional<Animation>& how, double now) {
    const StatusGlyph glyph =
        statusGlyph(m_, {.worried = worried_, .stretching = stretchGlyph_}, clock_.localHour(clock_.now()));
    glyphOpacity_.aim(glyph.symbol.isEmpty() ? 0 : 0.7, how, now);
    // A glyph that goes keeps its symbol while it fades.
    if (!glyph.symbol.isEmpty()) glyph_ = glyph;
}

double CritterView::nextFrame() const {
    const double now = clock_.uptime();
    for (const auto* value :
         {&padding_, &eyeSize_, &spacing_, &startle_, &dip_, &cheeks_, &cheekSize_, &cheekGap_, &cheekDrop_, &sleep_,
          &arcWidth_, &arcHeight_, &arcDroop_, &zzz_, &badge_, &glyphOpacity_, &width_}) {
        if (value->moving(now)) return now;
    }
    if (leftEye_.moving(now) || rightEye_.moving(now) || mouth_.moving(now)) return now;
    const double wall = clock_.now().seconds;
    if (mouth_.chewing(wall)) return now;
    double next = std::min(now + mouth_.untilNextChew(wall), shelf_.nextFrame());
    if (m_.asleep && m_.attending()) next = std::min(next, now + 1.0 / 24);
    return next;
}

double CritterView::shelfTop() const {
    const double now = clock_.uptime();
    return padding_.at(now) + eyeSize_.at(now) + kShelfGap;
}
