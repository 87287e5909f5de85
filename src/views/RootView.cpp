#include "views/RootView.h"

#include <algorithm>
#include <cmath>
#include <numbers>
#include <utility>

#include "views/Colors.h"
#include "views/CritterView.h"
#include "views/HiddenView.h"
#include "views/PieceIds.h"
#include "views/Shapes.h"

namespace {

constexpr double kTopRadius = 9;
constexpr double kRimWidth = 0.8;
constexpr double kShadowRadius = 12;
constexpr double kShadowDrop = 7;
constexpr double kWobble = 1.1;        // how much a boop stretches the body at most
constexpr double kBreathPeriod = 3.4;  // seconds
constexpr double kBreathTick = 0.25;
constexpr double kBreathDepth = 0.008;
constexpr double kSlideLimit = 280;
constexpr double kSnapHome = 24;

bool showsHidden(const NotchModel& model) {
    return model.hidden;
}

bool showsCritter(const NotchModel& model) {
    return !model.hidden && model.toy == Toy::critter;
}

}  // namespace

RootView::RootView(NotchModel& model, ViewPorts ports, Clock& clock, MainLoop& loop, std::function<double()> random)
    : model_(model),
      ports_(std::move(ports)),
      clock_(clock),
      context_{model,
               ports_,
               clock,
               loop,
               animations_,
               [this] {
                   if (onChange) onChange();
               }},
      width_(animations_, model.shapeWidth()),
      height_(animations_, model.shapeHeight()),
      seenBoops_(model.boopCount),
      confetti_(context_, std::move(random)),
      contents_{ContentSlot(context_, showsHidden, [this] { return std::make_unique<HiddenView>(context_); }),
                ContentSlot(context_, showsCritter, [this] { return std::make_unique<CritterView>(context_); })} {
    modelChanged(std::nullopt);
    subscription_ = model_.objectDidChange.subscribe([this](const auto& how) { modelChanged(how); });
    breathTimer_ = loop.every(kBreathTick, [this] { breathe(); });
}

void RootView::modelChanged(const std::optional<Animation>& how) {
    const double now = clock_.uptime();
    const bool left = std::exchange(seenHovering_, model_.hovering) && !model_.hovering;
    aimBody(how, now);
    followBoops(now);
    for (ContentSlot& content : contents_) content.update(how);
    context_.changed();
    // Last, because this calls modelChanged() again.
    if (left && model_.shelfExpanded) model_.shelfExpanded = false;
}

void RootView::aimBody(const std::optional<Animation>& how, double now) {
    width_.aim(model_.shapeWidth(), how, now);
    height_.aim(model_.shapeHeight(), how, now);
    bottomRadius_.aim(model_.attending() ? 26 : 14, how, now);
    breath_.aim(model_.attending() ? 1 : 1 - kBreathDepth * breathPhase_, how, now);

    const bool diskChanged = std::exchange(seenDiskFull_, model_.diskFull) != model_.diskFull;
    const auto bulge = diskChanged ? Animation::easeInOut(0.8) : how;
    bulgeX_.aim(model_.diskFull ? 1.045 : 1, bulge, now);
    bulgeY_.aim(model_.diskFull ? 0.985 : 1, bulge, now);
}

void RootView::followBoops(double now) {
    if (std::exchange(seenBoops_, model_.boopCount) == model_.boopCount) return;
    const auto wobble = Animation::interpolatingSpring(1, 320, 11);
    squashX_.jump(1.18);
    squashY_.jump(0.74);
    squashX_.aim(1, wobble, now);
    squashY_.aim(1, wobble, now);
    confetti_.burst();
}

void RootView::breathe() {
    if (onBreath) onBreath();
    if (model_.attending()) {
        breathPhase_ = 0;
        return;
    }
    breathPhase_ = 0.5 - 0.5 * std::cos(2 * std::numbers::pi * clock_.now().seconds / kBreathPeriod);
    // Also picks up what depends on the time of day.
    modelChanged(std::nullopt);
}

double RootView::nextFrame() const {
    const double now = clock_.uptime();
    if (animations_.moving(now)) return now;
    double next = std::numeric_limits<double>::infinity();
    for (const ContentSlot& content : contents_) next = std::min(next, content.nextFrame());
    return next;
}

QTransform RootView::wholeTransform(double now) const {
    const double breath = breath_.at(now);
    return QTransform::fromScale(squashX_.at(now) * breath * bulgeX_.at(now),
                                 squashY_.at(now) * breath * bulgeY_.at(now)) *
           QTransform::fromTranslate(kPanelWidth / 2, 0);
}

QRectF RootView::bodyRect(double now) const {
    const double width = std::max(width_.at(now), 1.0);
    return {-width / 2, 0, width, std::max(height_.at(now), 1.0)};
}

double RootView::depth() const {
    return kWobble * (height_.target() + kShadowDrop + 1.5 * kShadowRadius);
}

QPainterPath RootView::outline() const {
    const double now = clock_.uptime();
    return wholeTransform(now).map(notchShape(bodyRect(now), bottomRadius_.at(now), kTopRadius));
}

void RootView::compose(DisplayList& list) {
    const double now = clock_.uptime();
    for (ContentSlot& content : contents_) content.tidy();
    followPointer();

    list.with(wholeTransform(now), 1, [&] {
        composeBody(list, now);
        list.clipped(bodyRect(now), bottomRadius_.at(now), [&] {
            for (const ContentSlot& content : contents_) content.compose(list, bodyRect(now));
        });
        confetti_.compose(list, now);
    });
}

void RootView::composeBody(DisplayList& list, double now) const {
    const QRectF rect = bodyRect(now);
    const double radius = bottomRadius_.at(now);
    const double reach = 1.5 * kShadowRadius;
    const QRectF bounds = rect.adjusted(-kTopRadius - reach, 0, kTopRadius + reach, reach + kShadowDrop);
    // Corner curves come no closer to the sides than a quarter of the radius.
    const double inset = 2 + 0.25 * radius;
    const QRectF solid = rect.adjusted(inset, kTopRadius, -inset, -inset);
    const auto draw = [=](Canvas& canvas) {
        const QPainterPath shape = notchShape(rect, radius, kTopRadius);
        canvas.shadow(shape, black(0.55), kShadowRadius, {0, kShadowDrop}, solid);
        canvas.fill(shape, Qt::black);
        if (canvas.paintsOnlyIn(solid)) return;
        canvas.stroke(shape, linearGradient(rect, {0.5, 1}, {0.5, 0}, {{0, white(0.13)}, {1, white(0.02)}}), kRimWidth);
    };
    list.add(piece::body, bounds, {rect, radius}, draw, solid);
}

QPointF RootView::inside(const QPointF& point) const {
    return wholeTransform(clock_.uptime()).inverted().map(point);
}

void RootView::pointerMoved(const std::optional<QPointF>& point) {
    pointer_ = point;
    followPointer();
}

void RootView::followPointer() {
    const auto point = pointer_ ? std::optional(inside(*pointer_)) : std::nullopt;
    for (const ContentSlot& content : contents_) {
        if (View* view = content.touchable()) view->pointerMoved(point);
    }
}

Hit RootView::hit(const QPointF& point) {
    Hit hit;
    hit.tap = ports_.notchTapped;
    hit.drag = Hit::Slide{[this](double offset) { slide(offset); }, [this] { slideEnded(); }};
    for (const ContentSlot& content : contents_) {
        if (View* view = content.touchable()) hit = view->hit(inside(point), std::move(hit));
    }
    return hit;
}

void RootView::slide(double offset) {
    if (model_.hidden) return;
    if (!model_.sliding) {
        model_.sliding = true;
        slideBase_ = model_.slideX;
    }
    model_.slideX = std::clamp(slideBase_ + offset, -kSlideLimit, kSlideLimit);
}

void RootView::slideEnded() {
    if (std::abs(model_.slideX) < kSnapHome) model_.slideX = 0;
    model_.sliding = false;
}
