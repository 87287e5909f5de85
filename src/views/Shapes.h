#pragma once

#include <QPainterPath>
#include <QRectF>

/// The black body of the creature: hangs from the top edge of `rect`, joins it with concave flares of `topRadius` that
/// extend outside the rectangle on both sides, and has round bottom corners of at most half the height.
QPainterPath notchShape(const QRectF& rect, double bottomRadius, double topRadius);

/// A closed eye: an arc from the origin across `width` that sags by half of `droop` in the middle.
QPainterPath lashLine(double width, double droop);

/// A rounded rectangle with continuous curvature at its corners. The radius is limited to half the shorter side.
QPainterPath continuousRectangle(const QRectF& rect, double radius);

/// A continuous rectangle with fully round ends.
QPainterPath continuousCapsule(const QRectF& rect);

/// A circle around `center`.
QPainterPath circle(const QPointF& center, double diameter);
