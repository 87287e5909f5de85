#pragma once

#include <QPainterPath>
#include <QRegion>

/// The pixels inside `outline`, at `ratio` pixels per unit. The outline must be a single span in each row; each row of
/// pixels is sampled at its middle.
QRegion pixelsInside(const QPainterPath& outline, double ratio);
