#pragma once

#include <QPainterPath>
#include <QRegion>

/// The pixels inside `outline`, of which there are `ratio` to one of its units. Each row of pixels crosses it once from
/// the left to the right; the rows' middles decide.
QRegion pixelsInside(const QPainterPath& outline, double ratio);
