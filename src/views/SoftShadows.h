#pragma once

#include <QCache>
#include <QColor>
#include <QImage>
#include <QPainterPath>
#include <vector>

#include "views/PictureKey.h"

/// Renders and caches blurred shapes, by shape, radius and colour. Main thread only.
class SoftShadows {
 public:
    /// An image to draw, smoothly scaled, over `bounds` (in the shape's coordinates).
    struct Shadow {
        QImage image;
        QRectF bounds;
    };

    /// The shadow of `shape` with a blur `radius` in points (two standard deviations), at a resolution of at most
    /// `pixelsPerPoint`; wide blurs need, and get, fewer pixels.
    Shadow shadow(const QPainterPath& shape, double radius, const QColor& color, double pixelsPerPoint);

 private:
    QCache<PictureKey, Shadow> cache_{24};
};

/// Blurs an 8-bit mask of `width` x `height` pixels in place with a standard deviation of `sigma` pixels, by three box
/// filters in each direction; outside the mask everything is 0.
void blurMask(std::vector<uchar>& mask, int width, int height, double sigma);
