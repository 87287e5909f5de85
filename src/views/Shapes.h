#pragma once

#include <QPainterPath>
#include <QRectF>

/// The black body of the creature: hangs from the top edge of `rect`, melts into it with concave flares of `topRadius`
/// that reach outside the rectangle on both sides, and has round bottom corners of at most half the height.
QPainterPath notchShape(const QRectF& rect, double bottomRadius, double topRadius);

/// A closed eye: an arc over the width that sags by half of `droop` in its middle. Starts at the origin.
QPainterPath lashLine(double width, double droop);

/// A rounded rectangle whose corners take up their curvature gradually. The radius is limited to half the shorter side.
QPainterPath continuousRectangle(const QRectF& rect, double radius);

/// A continuous rectangle with fully round ends.
QPainterPath continuousCapsule(const QRectF& rect);

/// A circle around `center`.
QPainterPath circle(const QPointF& center, double diameter);
