#include <algorithm>
#include <cmath>
#include <utility>

#include "views/Colors.h"
#include "views/CritterView.h"
#include "views/PieceIds.h"
#include "views/Shapes.h"

// Where the face's parts stand and how they look; CritterView.cpp holds its states.

namespace {

constexpr double kStartleScale = 0.16;
constexpr double kStartleRise = 3;
constexpr double kGulpDip = 2.5;
constexpr double kBadgeGap = 6;
constexpr double kGlyphSize = 11;
constexpr double kGlyphRight = 30;
constexpr double kGlyphTop = 6;
constexpr double kZzzGap = 8;
constexpr double kZzzHeight = 10;

const TextStyle kBadgeStyle{9.5, QFont::Bold, Face::rounded};

QTransform moved(double x, double y) {
    return QTransform::fromTranslate(x, y);
}

/// Scales by `s` around (0, y).
QTransform scaledAround(double y, double s) {
    return QTransform::fromTranslate(0, -y) * QTransform::fromScale(s, s) * QTransform::fromTranslate(0, y);
}

}  // namespace

void CritterView::compose(DisplayList& list) const {
    const double now = clock_.uptime();
    const double sleep = sleep_.at(now);
    list.with(QTransform(), 1 - sleep, [&] {
        composeFace(list, now);
        shelf_.compose(list, shelfTop());
        composeMouth(list, now);
        composeBadge(list, now);
        composeGlyph(list, now);
    });
    list.with(QTransform(), sleep, [&] { composeSleep(list, now); });
}

QTransform CritterView::faceTransform(double now) const {
    const double middle = padding_.at(now) + eyeSize_.at(now) / 2;
    const double startle = startle_.at(now);
    return scaledAround(middle, 1 + kStartleScale * startle) *
           moved(0, kGulpDip * dip_.at(now) - kStartleRise * startle);
}

void CritterView::composeFace(DisplayList& list, double now) const {
    const double size = std::max(eyeSize_.at(now), 0.0);
    const double apart = (size + spacing_.at(now)) / 2;
    const double middle = padding_.at(now) + size / 2;
    list.with(faceTransform(now), 1, [&] {
        composeCheeks(list, now);
        list.with(moved(-apart, middle), 1, [&] { leftEye_.compose(list, piece::leftEye, now); });
        list.with(moved(apart, middle), 1, [&] { rightEye_.compose(list, piece::rightEye, now); });
    });
}

// In front of the shelf, which keeps behind it while it is open.
void CritterView::composeMouth(DisplayList& list, double now) const {
    const QTransform below = moved(0, padding_.at(now) + std::max(eyeSize_.at(now), 0.0));
    list.with(below * faceTransform(now), 1, [&] { mouth_.compose(list, now, clock_.now().seconds); });
}

void CritterView::composeCheeks(DisplayList& list, double now) const {
    const double c = std::max(cheekSize_.at(now), 0.1);
    const double x = (cheekGap_.at(now) + c) / 2;
    const double y = padding_.at(now) + eyeSize_.at(now) + cheekDrop_.at(now) - c / 2;
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

void CritterView::composeSleep(DisplayList& list, double now) const {
    const double top = padding_.at(now);
    const double w = arcWidth_.at(now);
    const double h = arcHeight_.at(now);
    const double droop = arcDroop_.at(now);
    const double gap = spacing_.at(now);
    const QRectF arcs(-gap / 2 - w - 2, top - 2, gap + 2 * w + 4, h + 4);
    list.add(piece::sleepingArcs, arcs, {top, w, droop, gap}, [=](Canvas& canvas) {
        for (const double left : {-gap / 2 - w, gap / 2})
            canvas.stroke(lashLine(w, droop).translated(left, top), eyeWhite(), 3);
    });

    const double p = std::fmod(clock_.now().seconds, 2.0) / 2;
    const QPointF place(12 + 6 * p, top + h + kZzzGap + kZzzHeight / 2 - 14 * p);
    list.with(QTransform(), zzz_.at(now), [&] {
        list.add(piece::zzz, QRectF(place.x() - 6, place.y() - 8, 12, 16), {p, place.y()}, [=](Canvas& canvas) {
            canvas.text(QStringLiteral("z"), place, {11, QFont::Bold, Face::rounded}, white((1 - p) * 0.5));
        });
    });
}

void CritterView::setBadge(int count) {
    if (std::exchange(badgeCount_, count) == count) return;
    badgeWidth_ = std::max(Canvas::textWidth(QString::number(count), kBadgeStyle) + 12, 14.5);
}

void CritterView::composeBadge(DisplayList& list, double now) const {
    if (badge_.at(now) <= 0) return;
    const double height = kBadgeStyle.size * 1.2 + 3;
    const double top = padding_.at(now) + eyeSize_.at(now) + kBadgeGap;
    const QRectF frame(-badgeWidth_ / 2, top, badgeWidth_, height);
    list.with(QTransform(), badge_.at(now), [&] {
        list.add(piece::badge, frame, {badgeCount_, frame}, [frame, count = badgeCount_](Canvas& canvas) {
            // Opaque, as it is mixed over the black body: the toolkit needs no help of other threads for that.
            const QColor ground = mixed(black(1), accentOrange(), 0.85);
            canvas.fill(continuousCapsule(frame), ground);
            canvas.text(QString::number(count), frame.center(), kBadgeStyle, mixed(ground, white(1), 0.75));
        });
    });
}

void CritterView::composeGlyph(DisplayList& list, double now) const {
    const double opacity = glyphOpacity_.at(now);
    if (opacity <= 0) return;
    const double box = kGlyphSize * 1.25;
    const QPointF place(width_.at(now) / 2 - kGlyphRight, kGlyphTop + box / 2);
    list.with(QTransform(), opacity, [&] {
        // A narrow symbol's square reaches further to the right than its ink.
        const QRectF bounds(place.x() - box, kGlyphTop, 1.5 * box, box);
        list.add(piece::glyph, bounds, {place, glyph_.symbol, glyph_.color}, [place, glyph = glyph_](Canvas& canvas) {
            canvas.symbol(glyph.symbol, place, kGlyphSize, glyph.color, Qt::AlignRight | Qt::AlignVCenter);
        });
    });
}
