#pragma once

#include <QCache>
#include <QColor>
#include <QImage>
#include <QPainterPath>
#include <vector>

#include "views/PictureKey.h"

/// Blurred fills of shapes, made once per shape, radius and colour and kept while they are in use. Main thread only.
class SoftShadows {
 public:
    /// A picture to be drawn, smoothly scaled, over `bounds` (the shape's coordinates).
    struct Shadow {
        QImage image;
        QRectF bounds;
    };

    /// The shadow of `shape` with this blur `radius` (points, two standard deviations of the blur), at most
    /// `pixelsPerPoint` fine; a wide blur needs, and gets, fewer pixels.
    Shadow shadow(const QPainterPath& shape, double radius, const QColor& color, double pixelsPerPoint);

 private:
    QCache<PictureKey, Shadow> cache_{24};
};

/// Blurs an 8-bit mask of `width` x `height` pixels in place with a standard deviation of `sigma` pixels, as three box
/// filters in each direction do; what lies outside the mask is empty.
void blurMask(std::vector<uchar>& mask, int width, int height, double sigma);
