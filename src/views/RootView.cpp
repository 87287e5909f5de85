#include "views/RootView.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <numbers>
#include <utility>

#include "views/Colors.h"
#include "views/PieceIds.h"
#include "views/Shapes.h"

namespace {

constexpr double kTopRadius = 9;
constexpr double kRimWidth = 0.8;
constexpr double kShadowRadius = 12;
constexpr double kShadowDrop = 7;
constexpr double kWobble = 1.1;        // as tall as a boop makes the body on its way back
constexpr double kBreathPeriod = 3.4;  // seconds
constexpr double kBreathTick = 0.25;
constexpr double kBreathDepth = 0.008;
constexpr double kSlideLimit = 280;
constexpr double kSnapHome = 24;

double bottomRadius(const NotchModel& m) {
    return m.attending() ? 26 : 14;
}

bool showsCritter(const NotchModel& m) {
    return !m.hidden && m.toy == Toy::critter;
}

}  // namespace

RootView::RootView(NotchModel& model, ChipPorts ports, Clock& clock, MainLoop& loop, std::function<double()> random)
    : m_(model),
      ports_(std::move(ports)),
      clock_(clock),
      loop_(loop),
      width_(model.shapeWidth()),
      height_(model.shapeHeight()),
      seenBoops_(model.boopCount),
      confetti_(loop, std::move(random)) {
    modelChanged(std::nullopt);
    subscription_ = m_.objectDidChange.subscribe([this](const auto& how) { modelChanged(how); });
    breathTimer_ = loop_.every(kBreathTick, [this] { breathe(); });
}

void RootView::modelChanged(const std::optional<Animation>& how) {
    const double now = clock_.uptime();
    const bool left = seenHovering_ && !m_.hovering;
    aimBody(how, now);
    followBoops(now);
    showOrHideCritter(how, now);
    changed();
    // Last, because it comes back here with no curve.
    if (left && m_.shelfExpanded) m_.shelfExpanded = false;
}

void RootView::changed() {
    if (onChange) onChange();
}

void RootView::aimBody(const std::optional<Animation>& how, double now) {
    width_.aim(m_.shapeWidth(), how, now);
    height_.aim(m_.shapeHeight(), how, now);
    bottomRadius_.aim(bottomRadius(m_), how, now);
    breath_.aim(m_.attending() ? 1 : 1 - kBreathDepth * breathPhase_, how, now);

    const bool diskChanged = std::exchange(seenDiskFull_, m_.diskFull) != m_.diskFull;
    const auto bulge = diskChanged ? Animation::easeInOut(0.8) : how;
    bulgeX_.aim(m_.diskFull ? 1.045 : 1, bulge, now);
    bulgeY_.aim(m_.diskFull ? 0.985 : 1, bulge, now);

    const bool hoverChanged = std::exchange(seenHovering_, m_.hovering) != m_.hovering;
    chevron_.aim(m_.hovering ? 0.55 : 0, hoverChanged ? Animation::easeInOut(0.25) : how, now);
    hiddenContent_.aim(m_.hidden ? 1 : 0, how, now);
}

void RootView::followBoops(double now) {
    if (std::exchange(seenBoops_, m_.boopCount) == m_.boopCount) return;
    const auto wobble = Animation::interpolatingSpring(1, 320, 11);
    squashX_.jump(1.18);
    squashY_.jump(0.74);
    squashX_.aim(1, wobble, now);
    squashY_.aim(1, wobble, now);
    confetti_.burst([this] { return clock_.uptime(); }, [this] { changed(); });
}

void RootView::showOrHideCritter(const std::optional<Animation>& how, double now) {
    const bool show = showsCritter(m_);
    const bool shown = critter_ && critterContent_.target() == 1;
    if (show && !shown) {
        // A face that comes back while it fades out begins anew.
        critter_ = std::make_unique<CritterView>(m_, ports_, clock_, loop_, [this] { changed(); });
    } else if (!show && shown) {
        critter_->disappear();
    }
    critterContent_.aim(show ? 1 : 0, how, now);
    if (critter_) critter_->update(how);
}

void RootView::breathe() {
    if (onBreath) onBreath();
    if (m_.attending()) {
        breathPhase_ = 0;
        return;
    }
    breathPhase_ = 0.5 - 0.5 * std::cos(2 * std::numbers::pi * clock_.now().seconds / kBreathPeriod);
    // Also takes in what changes with the time of day.
    modelChanged(std::nullopt);
}

double RootView::nextFrame() const {
    const double now = clock_.uptime();
    for (const auto* value : {&width_, &height_, &bottomRadius_, &squashX_, &squashY_, &breath_, &bulgeX_, &bulgeY_,
                              &chevron_, &hiddenContent_, &critterContent_}) {
        if (value->moving(now)) return now;
    }
    if (confetti_.moving(now)) return now;
    return critter_ ? critter_->nextFrame() : std::numeric_limits<double>::infinity();
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
    if (critter_ && critterContent_.target() == 0 && !critterContent_.moving(now)) critter_.reset();
    followPointer();

    list.with(wholeTransform(now), 1, [&] {
        composeBody(list, now);
        list.clipped(bodyRect(now), bottomRadius_.at(now), [&] {
            list.with(QTransform(), hiddenContent_.at(now), [&] { composeChevron(list, now); });
            if (critter_) list.with(QTransform(), critterContent_.at(now), [&] { critter_->compose(list); });
        });
        confetti_.compose(list, now);
    });
}

void RootView::composeBody(DisplayList& list, double now) const {
    const QRectF rect = bodyRect(now);
    const double radius = bottomRadius_.at(now);
    const double reach = 1.5 * kShadowRadius;
    const QRectF bounds = rect.adjusted(-kTopRadius - reach, 0, kTopRadius + reach, reach + kShadowDrop);
    // The corners' curves keep a quarter of the radius from both sides.
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

void RootView::composeChevron(DisplayList& list, double now) const {
    constexpr double size = 9;
    const QPointF bottom(0, height_.at(now) - 1);
    const QRectF bounds(-size, bottom.y() - 2 * size, 2 * size, 3 * size);
    list.with(QTransform(), chevron_.at(now), [&] {
        list.add(piece::chevron, bounds, {bottom}, [=](Canvas& canvas) {
            canvas.symbol(QStringLiteral("chevron.compact.down"), bottom, size, white(1),
                          Qt::AlignHCenter | Qt::AlignBottom);
        });
    });
}

void RootView::tap(const QPointF& point) {
    ShelfArea* things = shelf();
    if (things && things->tap(inside(point), critter_->shelfTop())) return;
    if (ports_.notchTapped) ports_.notchTapped();
}

QPointF RootView::inside(const QPointF& point) const {
    return wholeTransform(clock_.uptime()).inverted().map(point);
}

ShelfArea* RootView::shelf() {
    return critter_ && showsCritter(m_) ? &critter_->shelf() : nullptr;
}

void RootView::pointerMoved(const std::optional<QPointF>& point) {
    pointer_ = point;
    followPointer();
}

void RootView::followPointer() {
    ShelfArea* things = shelf();
    if (things) things->pointerMoved(pointer_ ? std::optional(inside(*pointer_)) : std::nullopt, critter_->shelfTop());
}

bool RootView::press(const QPointF& point) {
    ShelfArea* things = shelf();
    return things && things->press(inside(point), critter_->shelfTop());
}

void RootView::release(const QPointF& way) {
    if (critter_) critter_->shelf().release(way);
}

const Chip* RootView::pressedChip() {
    ShelfArea* things = shelf();
    return things ? things->pressedChip() : nullptr;
}

const Chip* RootView::chipAt(const QPointF& point) {
    ShelfArea* things = shelf();
    return things ? things->chipAt(inside(point), critter_->shelfTop()) : nullptr;
}

void RootView::slide(double translation) {
    if (m_.hidden) return;
    if (!m_.sliding) {
        m_.sliding = true;
        slideBase_ = m_.slideX;
    }
    m_.slideX = std::clamp(slideBase_ + translation, -kSlideLimit, kSlideLimit);
}

void RootView::slideEnded() {
    if (std::abs(m_.slideX) < kSnapHome) m_.slideX = 0;
    m_.sliding = false;
}
