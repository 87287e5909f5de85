#include "views/Eye.h"

#include <algorithm>

#include "views/Colors.h"
#include "views/Shapes.h"

namespace {

constexpr double kMinSlit = 0.4;  // points

QRectF frame(const QPointF& center, double width, double height) {
    return {center.x() - width / 2, center.y() - height / 2, width, height};
}

void drawBall(Canvas& canvas, double d) {
    const QRectF eye = frame({}, d, d);
    const QRectF square = eye.adjusted(-1, -1, 1, 1);
    canvas.cover(square, radialGradient(eye, {0.42, 0.36}, 1, 0.72 * d, {{0, gray(1.0)}, {1, gray(0.83)}}));
    canvas.cover(square, radialGradient(eye, {0.5, 0.92}, 0.16 * d, 0.6 * d, {{0, black(0)}, {1, black(0.16)}}));
}

void drawPupil(Canvas& canvas, const QPointF& at, double p) {
    canvas.fill(circle(at, p),
                radialGradient(frame(at, p, p), {0.5, 0.5}, 0.5, p / 2, {{0, gray(0.17)}, {1, gray(0)}}));
    canvas.fill(circle(at + QPointF(-0.20 * p, -0.22 * p), 0.34 * p), white(0.95));
    canvas.fill(circle(at + QPointF(0.22 * p, 0.24 * p), 0.15 * p), white(0.2));
}

void drawLid(Canvas& canvas, double d, double closure) {
    // It overlaps the eye's upper edge, or antialiased pixels would shine through there.
    QPainterPath lid;
    lid.addRect(QRectF(-(d + 6) / 2, -d / 2 - 3, d + 6, d * closure + 3));
    canvas.fill(lid, Qt::black);
}

void drawClosed(Canvas& canvas, double d) {
    const double height = 0.36 * d;
    const QPainterPath arc = lashLine(d, 0.34 * d).translated(-d / 2, -height / 2);
    canvas.stroke(arc, eyeWhite(), d > 22 ? 3 : 2.4);
}

}  // namespace

void Eye::aim(const Pose& pose, const std::optional<Animation>& how, double now) {
    diameter_.aim(pose.diameter, how, now);
    pupil_.aim(pose.pupil, how, now);
    lid_.aim(pose.lid, how, now);
    gaze_.aim(pose.gaze, how, now);
    shut_.aim(pose.shut ? 1 : 0, how, now);
}

void Eye::compose(DisplayList& list, int id, double now) const {
    const double d = std::max(diameter_.at(now), 0.0);
    const double p = std::max(pupil_.at(now), 0.0);
    const double lid = std::clamp(lid_.at(now), 0.0, 1.0);
    const double shut = std::clamp(shut_.at(now), 0.0, 1.0);
    const QPointF gaze = gaze_.at(now);
    const QRectF eye = frame({}, d, d);
    list.add(id, eye.adjusted(-2, 0, 2, 0), {d, p, lid, shut, gaze.x(), gaze.y()}, [=](Canvas& canvas) {
        canvas.layer(eye, circle({}, d), 1 - shut, [&](Canvas& sheet) {
            // An almost closed eye would show only antialiased pixels: grey dashes.
            if (d * (1 - lid) < kMinSlit) return sheet.cover(eye.adjusted(-1, -1, 1, 1), Qt::black);
            drawBall(sheet, d);
            drawPupil(sheet, gaze, p);
            drawLid(sheet, d, lid);
        });
        canvas.with(QTransform(), shut, [&] { drawClosed(canvas, d); });
    });
}
