#include "views/CritterView.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "views/Colors.h"
#include "views/PieceIds.h"
#include "views/Shapes.h"

namespace {

using Swallow = Reactions::Swallow;

constexpr double kShelfGap = 12;  // points below the eyes
constexpr double kMusicGap = 10;
constexpr double kGazeReach = 160;  // distance in points from which the pupils move no further
constexpr double kStartleScale = 0.16;
constexpr double kStartleRise = 3;
constexpr double kGulpDip = 2.5;
constexpr double kBadgeGap = 6;
constexpr double kZzzFrames = 24;  // a second

QTransform moved(double x, double y) {
    return QTransform::fromTranslate(x, y);
}

}  // namespace

CritterView::CritterView(const ViewContext& context)
    : context_(context),
      model_(context.model),
      animations_(context.animations),
      reactions_(context,
                 [this](const auto& how) {
                     update(how);
                     context_.changed();
                 }),
      state_(reactions_.state()),
      seenCharging_(model_.charging),
      shelf_(context),
      music_(context) {
    CritterView::update(std::nullopt);
}

void CritterView::update(const std::optional<Animation>& how) {
    const double now = context_.now();
    aimLayout(how, now);
    aimCheeks(how, now);
    aimEyes(how, now);
    mouth_.aim(mouthState(), how, now);
    shelf_.update(how, top_.target() + eyeSize_.target() + kShelfGap);
    music_.update(how);
    const GlyphHints hints{.worried = state_.worried, .stretching = state_.stretching};
    glyph_.show(statusGlyph(model_, hints, context_.clock.localHour(context_.clock.now())), how, now);
    // Last, because a reaction calls update() again with its own curve.
    reactions_.follow();
}

void CritterView::aimLayout(const std::optional<Animation>& how, double now) {
    top_.aim(face().top, how, now);
    eyeSize_.aim(face().eye, how, now);
    spacing_.aim(face().spacing, how, now);
    startle_.aim(state_.startled ? 1 : 0, Animation::interpolatingSpring(1, 300, 12), now);
    const bool gulps = state_.swallow == Swallow::gulping;
    dip_.aim(gulps ? 1 : 0, gulps ? Animation::easeOut(0.12) : Animation::interpolatingSpring(1, 300, 16), now);
    sleep_.aim(model_.asleep ? 1 : 0, how, now);
    sleepingEyes_.aim(face(), model_.attending(), how, now);

    // The badge covers the mouth, so it gives way to an open one.
    const bool badge = model_.hasHeld() && !model_.hovering && !model_.dragNear && !model_.dropTargeted &&
                       !model_.yawning && state_.swallow == Swallow::none;
    badge_.show(badge, model_.heldCount(), how, now);
}

void CritterView::aimCheeks(const std::optional<Animation>& how, double now) {
    const bool chargeChanged = std::exchange(seenCharging_, model_.charging) != model_.charging;
    cheeks_.aim(model_.charging ? 1 : 0, chargeChanged ? Animation::easeInOut(0.9) : how, now);
    cheekSize_.aim(face().cheek, how, now);
    cheekGap_.aim(face().cheekGap, how, now);
    cheekDrop_.aim(face().cheekDrop, how, now);
}

void CritterView::aimEyes(const std::optional<Animation>& how, double now) {
    const auto curve = eyeCurve(how);
    const bool shut = model_.cameraInUse || state_.swallow == Swallow::gulping;
    Eye::Pose pose{face().eye, face().pupil, lidClosure(), gaze(-1), shut};
    leftEye_.aim(pose, curve, now);
    pose.gaze = gaze(+1);
    rightEye_.aim(pose, curve, now);
}

std::optional<Animation> CritterView::eyeCurve(const std::optional<Animation>& how) {
    static const std::array curves{Animation::easeInOut(0.45), Animation::easeOut(0.09), Animation::easeInOut(0.5),
                                   Animation::easeInOut(0.6),  Animation::easeOut(0.3),  Animation::easeOut(0.35),
                                   Animation::easeOut(0.06)};
    const auto was =
        std::exchange(eyeCauses_, {model_.cameraInUse, state_.blinking, model_.isSleepy(context_.clock), model_.yawning,
                                   state_.worried, state_.glancingDown, state_.swallow == Swallow::gulping});
    for (size_t i = 0; i < curves.size(); ++i) {
        if (was[i] != eyeCauses_[i]) return curves[i];
    }
    return state_.swallow == Swallow::closing ? Animation::easeOut(0.12) : how;
}

double CritterView::lidClosure() const {
    if (model_.cameraInUse || state_.blinking) return 1;
    if (model_.dropTargeted || model_.dragNear || state_.worried) return 0.02;
    if (model_.capsOn) return 0.04;
    if (model_.chewing) return 0.55;
    if (model_.yawning) return 0.8;
    if (model_.isQuiet(context_.clock)) return 0.4;
    return model_.isSleepy(context_.clock) ? 0.46 : 0.12;
}

QPointF CritterView::gaze(double side) const {
    if (model_.isQuiet(context_.clock)) return {0, 0};
    if (state_.worried) return {4.5, -2.5};
    if (state_.swallow != Swallow::none) return {0, face().swallow};
    if (state_.glancingDown) return {0, 5.5};
    if (state_.look != 0) return {5 * state_.look, 0.5};
    if (std::abs(model_.slideX) > 30) return {model_.slideX > 0 ? -4.5 : 4.5, 0.5};

    const QPointF eye(model_.centerX + side * (face().eye + face().spacing) / 2,
                      model_.screenTop - (face().top + face().eye / 2));
    const QPointF offset = model_.cursor.get() - eye;
    const double distance = std::hypot(offset.x(), offset.y());
    if (distance < 0.5) return {0, 0};
    const double k = std::min(distance / kGazeReach, 1.0) * face().gaze;
    return {offset.x() / distance * k, -offset.y() / distance * k};
}

Mouth::State CritterView::mouthState() const {
    if (state_.swallow == Swallow::closing) return Mouth::State::full;
    if (state_.swallow == Swallow::gulping) return Mouth::State::gulping;
    if (model_.dropTargeted || (model_.dragNear && !state_.fed)) return Mouth::State::eating;
    if (model_.yawning) return Mouth::State::yawning;
    if (badge_.shown()) return Mouth::State::covered;
    return model_.downloading || model_.chewing ? Mouth::State::munching : Mouth::State::resting;
}

double CritterView::nextFrame() const {
    const double now = context_.now(), wall = context_.clock.now().seconds;
    double next = mouth_.chewing(wall) ? now : std::min(now + mouth_.untilNextChew(wall), shelf_.nextFrame());
    if (model_.asleep && model_.attending()) next = std::min(next, now + 1 / kZzzFrames);
    return next;
}

QPointF CritterView::belowEyes(const QPointF& point, double gap) const {
    const double now = context_.now();
    return point - QPointF(0, top_.at(now) + eyeSize_.at(now) + gap);
}

Hit CritterView::hit(const QPointF& point, Hit below) {
    below = music_.hit(belowEyes(point, kMusicGap), std::move(below));
    return shelf_.hit(belowEyes(point, kShelfGap), std::move(below));
}

void CritterView::pointerMoved(const std::optional<QPointF>& point) {
    shelf_.pointerMoved(point ? std::optional(belowEyes(*point, kShelfGap)) : std::nullopt);
    music_.pointerMoved(point ? std::optional(belowEyes(*point, kMusicGap)) : std::nullopt);
}

QTransform CritterView::faceTransform(double now) const {
    const double startle = startle_.at(now), scale = 1 + kStartleScale * startle;
    const double middle = top_.at(now) + eyeSize_.at(now) / 2;
    return moved(0, -middle) * QTransform::fromScale(scale, scale) *
           moved(0, middle + kGulpDip * dip_.at(now) - kStartleRise * startle);
}

void CritterView::compose(DisplayList& list, const QRectF& body) const {
    const double now = context_.now(), wall = context_.clock.now().seconds;
    const double sleep = sleep_.at(now), top = top_.at(now), bottom = top + eyeSize_.at(now);
    const QTransform face = faceTransform(now);
    list.with(QTransform(), 1 - sleep, [&] {
        list.with(face, 1, [&] {
            composeCheeks(list, now);
            composeEyes(list, now);
        });
        list.with(moved(0, bottom + kShelfGap), 1, [&] { shelf_.compose(list); });
        list.with(moved(0, bottom + kMusicGap), 1, [&] { music_.compose(list); });
        // In front of the shelf, which steps back behind an open mouth.
        list.with(moved(0, bottom) * face, 1, [&] { mouth_.compose(list, now, wall); });
        badge_.compose(list, bottom + kBadgeGap, now);
        glyph_.compose(list, body.right(), now);
    });
    list.with(QTransform(), sleep, [&] { sleepingEyes_.compose(list, top, spacing_.at(now), now, wall); });
}

void CritterView::composeEyes(DisplayList& list, double now) const {
    const double size = std::max(eyeSize_.at(now), 0.0);
    const double apart = (size + spacing_.at(now)) / 2, middle = top_.at(now) + size / 2;
    list.with(moved(-apart, middle), 1, [&] { leftEye_.compose(list, piece::leftEye, now); });
    list.with(moved(apart, middle), 1, [&] { rightEye_.compose(list, piece::rightEye, now); });
}

void CritterView::composeCheeks(DisplayList& list, double now) const {
    const double c = std::max(cheekSize_.at(now), 0.1);
    const double x = (cheekGap_.at(now) + c) / 2;
    const double y = top_.at(now) + eyeSize_.at(now) + cheekDrop_.at(now) - c / 2;
    list.with(QTransform(), cheeks_.at(now), [&] {
        list.add(piece::cheeks, QRectF(-x - c / 2, y - c / 2, 2 * x + c, c), {c, x, y}, [=](Canvas& canvas) {
            for (const double side : {-x, x}) {
                const QRectF frame(side - c / 2, y - c / 2, c, c);
                canvas.fill(circle({side, y}, c), radialGradient(frame, {0.5, 0.5}, 0, 0.62 * c,
                                                                 {{0, accentOrange(0.5)}, {1, accentOrange(0)}}));
            }
        });
    });
}
