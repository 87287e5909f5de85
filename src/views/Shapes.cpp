#include "views/Shapes.h"

#include <algorithm>
#include <numbers>

QPainterPath notchShape(const QRectF& rect, double bottomRadius, double topRadius) {
    const double b = std::min(bottomRadius, rect.height() / 2);
    const double t = topRadius;
    const double left = rect.left(), right = rect.right(), top = rect.top(), bottom = rect.bottom();

    QPainterPath path(QPointF(left - t, top));
    path.quadTo(left, top, left, top + t);
    path.lineTo(left, bottom - b);
    path.quadTo(left, bottom, left + b, bottom);
    path.lineTo(right - b, bottom);
    path.quadTo(right, bottom, right, bottom - b);
    path.lineTo(right, top + t);
    path.quadTo(right, top, right + t, top);
    path.closeSubpath();
    return path;
}

QPainterPath lashLine(double width, double droop) {
    QPainterPath path;
    path.quadTo(width / 2, droop, width, 0);
    return path;
}

namespace {

// A corner starts this many radii before the vertex, if the side is long enough.
constexpr double kReach = 1.3;

/// Distance of a Bézier handle from the end of its curve, such that the midpoint of a corner that starts `reach` before
/// the vertex lies on the circle of `radius`.
double handle(double reach, double radius) {
    return (4 * reach - 8 * radius * (1 - std::numbers::sqrt2 / 2)) / 3;
}

}  // namespace

QPainterPath continuousRectangle(const QRectF& rect, double radius) {
    const double r = std::clamp(radius, 0.0, std::min(rect.width(), rect.height()) / 2);
    const double ex = std::min(kReach * r, rect.width() / 2);
    const double ey = std::min(kReach * r, rect.height() / 2);
    const double cx = ex - handle(ex, r);  // distance of the handles from the vertex
    const double cy = ey - handle(ey, r);
    const double left = rect.left(), right = rect.right(), top = rect.top(), bottom = rect.bottom();

    QPainterPath path(QPointF(left + ex, top));
    path.lineTo(right - ex, top);
    path.cubicTo(right - cx, top, right, top + cy, right, top + ey);
    path.lineTo(right, bottom - ey);
    path.cubicTo(right, bottom - cy, right - cx, bottom, right - ex, bottom);
    path.lineTo(left + ex, bottom);
    path.cubicTo(left + cx, bottom, left, bottom - cy, left, bottom - ey);
    path.lineTo(left, top + ey);
    path.cubicTo(left, top + cy, left + cx, top, left + ex, top);
    path.closeSubpath();
    return path;
}

QPainterPath continuousCapsule(const QRectF& rect) {
    return continuousRectangle(rect, std::min(rect.width(), rect.height()) / 2);
}

QPainterPath circle(const QPointF& center, double diameter) {
    QPainterPath path;
    path.addEllipse(center, diameter / 2, diameter / 2);
    return path;
}
