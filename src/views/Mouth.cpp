#include "views/Mouth.h"

#include <QColor>
#include <algorithm>
#include <array>
#include <cmath>
#include <limits>

#include "views/Colors.h"
#include "views/PieceIds.h"
#include "views/Shapes.h"

namespace {

constexpr double kChewPeriod = 0.55;  // seconds
constexpr double kChewEase = 0.3;
constexpr double kChewOpacity = 0.55;
constexpr double kTongueDrop = 9;
constexpr double kCheek = 17;
constexpr double kClosedEnd = 1, kYawnEnd = 19;  // radii of the mouth's gradient

const QColor kThroat = QColor::fromRgbF(0.11F, 0.015F, 0.04F);
const QColor kPalate = QColor::fromRgbF(0.44F, 0.09F, 0.14F);
const QColor kLips = QColor::fromRgbF(0.74F, 0.24F, 0.25F);
const QColor kTongueTop = QColor::fromRgbF(0.87F, 0.42F, 0.45F);
const QColor kTongueBottom = QColor::fromRgbF(0.58F, 0.19F, 0.26F);
const QColor kGroove = QColor::fromRgbF(0.46F, 0.13F, 0.2F, 0.6F);

QColor faded(const QColor& color) {
    return QColor::fromRgbF(color.redF(), color.greenF(), color.blueF(), 0);
}

QColor warmGlow(double opacity) {
    return QColor::fromRgbF(0.95F, 0.34F, 0.30F, float(opacity));
}

QPointF tonguePoint(const QRectF& frame, double x, double y) {
    return {frame.left() + x * frame.width(), frame.top() + y * frame.height()};
}

/// Two soft humps at the back with a dip between them, and a round tip in front.
QPainterPath tongueShape(const QRectF& frame) {
    const auto at = [&frame](double x, double y) { return tonguePoint(frame, x, y); };
    QPainterPath path(at(0.5, 0.08));
    path.cubicTo(at(0.6, -0.03), at(0.8, -0.04), at(0.92, 0.14));
    path.cubicTo(at(1.04, 0.34), at(0.98, 0.62), at(0.84, 0.8));
    path.cubicTo(at(0.72, 0.95), at(0.6, 1), at(0.5, 1));
    path.cubicTo(at(0.4, 1), at(0.28, 0.95), at(0.16, 0.8));
    path.cubicTo(at(0.02, 0.62), at(-0.04, 0.34), at(0.08, 0.14));
    path.cubicTo(at(0.2, -0.04), at(0.4, -0.03), at(0.5, 0.08));
    path.closeSubpath();
    return path;
}

/// The opacity of the black capsule over a munching mouth: it eases in and out in alternating periods.
double chewDarkness(double wallTime) {
    const double n = std::floor(wallTime / kChewPeriod);
    const bool even = std::fmod(n, 2) == 0;
    const double left = Animation::easeInOut(kChewEase).at(wallTime - n * kChewPeriod).distance;
    return kChewOpacity * (even ? 1 - left : left);
}

}  // namespace

struct Mouth::Look {
    double width, height, opacity, space, shadow, gradientEnd, rim, glow, tongueWidth, tongueHeight, tongueOpacity;
    double cheeks = 0;
    double chew = 0;
    QRectF frame() const { return {-width / 2, space, width, height}; }
};

const std::array<double Mouth::Look::*, 12> Mouth::kAnimated{
    &Look::width, &Look::height, &Look::opacity,     &Look::space,        &Look::shadow,        &Look::gradientEnd,
    &Look::rim,   &Look::glow,   &Look::tongueWidth, &Look::tongueHeight, &Look::tongueOpacity, &Look::cheeks};

// In the order of State.
const std::array<Mouth::Look, 7> Mouth::kLooks{{{14, 2.4, 0.55, 7, 0, kClosedEnd, 0, 0, 0, 0, 0},
                                                {14, 2.4, 0, 7, 0, kClosedEnd, 0, 0, 0, 0, 0},
                                                {16, 7, 0.9, 7, 0, kClosedEnd, 0, 0, 0, 0, 0},
                                                {20, 24, 1, 7, 0.6, kYawnEnd, 0.24, 0.1, 0, 0, 0},
                                                {40, 30, 1, 11, 0.6, 30, 0.34, 0.16, 20, 8, 1},
                                                {24, 5, 1, 11, 0.3, kClosedEnd, 0.12, 0, 0, 0, 0, 1},
                                                {9, 5, 1, 9, 0, kClosedEnd, 0, 0, 0, 0, 0}}};

Mouth::Mouth(Animations& animations) {
    for (const auto value : kAnimated) values_.emplace_back(animations, kLooks[0].*value, 0.002);
}

void Mouth::aim(State state, const std::optional<Animation>& how, double now) {
    std::optional<Animation> curve = how;
    if (state != state_ && state == State::full)
        curve = Animation::interpolatingSpring(1, 320, 27);  // shuts without a bounce
    else if ((state == State::eating) != (state_ == State::eating))
        curve = Animation::interpolatingSpring(1, 260, 15);
    else if ((state == State::yawning) != (state_ == State::yawning))
        curve = Animation::easeInOut(0.6);
    else if (state != state_ && state_ == State::gulping)
        curve = Animation::interpolatingSpring(1, 260, 15);
    else if (state != state_ && state == State::gulping)
        curve = Animation::easeOut(0.1);
    state_ = state;

    for (size_t i = 0; i < kAnimated.size(); ++i) values_[i].aim(kLooks[size_t(state)].*kAnimated[i], curve, now);
}

bool Mouth::chewing(double wallTime) const {
    return state_ == State::munching && std::fmod(wallTime, kChewPeriod) < kChewEase;
}

double Mouth::untilNextChew(double wallTime) const {
    if (state_ != State::munching) return std::numeric_limits<double>::infinity();
    return kChewPeriod - std::fmod(wallTime, kChewPeriod);
}

Mouth::Look Mouth::look(double now, double wallTime) const {
    Look look{};
    // A spring may overshoot below 0.
    for (size_t i = 0; i < kAnimated.size(); ++i) look.*kAnimated[i] = std::max(values_[i].at(now), 0.0);
    if (state_ == State::munching) look.chew = chewDarkness(wallTime);
    return look;
}

void Mouth::compose(DisplayList& list, double now, double wallTime) const {
    const Look l = look(now, wallTime);
    // Covers the widest part: the glow, of radius 13, fades out within 1.5 times that.
    const double margin = l.glow > 0 || l.shadow > 0 || l.cheeks > 0 ? 20 : 1;
    const QRectF bounds(-l.width / 2 - margin, l.space - margin, l.width + 2 * margin, l.height + 2 * margin);
    PictureKey key{l.chew};
    for (const auto value : kAnimated) key.add(l.*value);
    list.add(piece::mouth, bounds, key, [l](Canvas& canvas) {
        // An opaque base, so that nothing behind the mouth shows through.
        if (l.opacity > 0) canvas.fill(continuousCapsule(l.frame()), Qt::black);
        canvas.with(QTransform(), l.opacity, [&] { draw(canvas, l); });
    });
}

// Cheeks stuffed with what it has just taken.
void Mouth::drawCheeks(Canvas& canvas, const Look& l) {
    const QRectF mouth = l.frame();
    for (const double side : {-1.0, 1.0}) {
        const QPointF center(side * (mouth.width() / 2 + kCheek / 2 - 3), mouth.center().y());
        const QRectF frame(center.x() - kCheek / 2, center.y() - kCheek / 2, kCheek, kCheek);
        canvas.fill(
            circle(center, kCheek),
            radialGradient(frame, {0.5, 0.4}, 0, kCheek / 2,
                           {{0, warmGlow(0.5 * l.cheeks)}, {0.6, warmGlow(0.24 * l.cheeks)}, {1, warmGlow(0)}}));
    }
}

void Mouth::draw(Canvas& canvas, const Look& l) {
    const QRectF frame = l.frame();
    const QPainterPath capsule = continuousCapsule(frame);
    canvas.shadow(capsule, warmGlow(l.glow), 13, {});
    canvas.shadow(capsule, black(l.shadow), 4, {0, 2});
    if (l.cheeks > 0) drawCheeks(canvas, l);
    // A closed mouth is flat and dark; throat and lips appear as it opens.
    const double open = std::clamp((l.gradientEnd - kClosedEnd) / (kYawnEnd - kClosedEnd), 0.0, 1.0);
    canvas.fill(capsule,
                radialGradient(frame, {0.5, 0.66}, 1, std::max(l.gradientEnd, kClosedEnd),
                               {{0, mixed(kPalate, kThroat, open)}, {0.5, kPalate}, {1, mixed(kPalate, kLips, open)}}));
    if (l.tongueOpacity > 0) {
        canvas.with(QTransform(), l.tongueOpacity,
                    [&] { canvas.clipped(capsule, [&] { drawTongue(canvas, l, frame.center()); }); });
    }
    if (l.rim > 0)
        canvas.stroke(capsule, linearGradient(frame, {0.5, 0}, {0.5, 0.5}, {{0, white(l.rim)}, {1, white(0)}}), 1.1);
    if (l.chew > 0) canvas.fill(capsule, black(l.chew));
}

void Mouth::drawTongue(Canvas& canvas, const Look& l, const QPointF& center) {
    const QRectF frame(center.x() - l.tongueWidth / 2, center.y() + kTongueDrop - l.tongueHeight / 2, l.tongueWidth,
                       l.tongueHeight);
    const QPainterPath tongue = tongueShape(frame);
    canvas.shadow(tongue, black(0.45), 2.5, {0, -1.5});
    canvas.fill(tongue, linearGradient(frame, {0.5, 0}, {0.5, 1}, {{0, kTongueTop}, {1, kTongueBottom}}));
    QPainterPath groove(tonguePoint(frame, 0.5, 0.2));
    groove.lineTo(tonguePoint(frame, 0.5, 0.74));
    canvas.stroke(groove, linearGradient(frame, {0.5, 0.1}, {0.5, 0.8}, {{0, kGroove}, {1, faded(kGroove)}}), 0.9);
    for (const double x : {0.27, 0.73}) {
        const QPointF light = tonguePoint(frame, x, 0.26);
        const QRectF spot(light.x() - 3, light.y() - 1.2, 6, 2.4);
        canvas.fill(continuousCapsule(spot), white(0.16));
    }
}
