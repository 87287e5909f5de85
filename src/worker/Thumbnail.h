#pragma once

#include <QByteArray>

#include "worker/Result.h"

/// Rows from the top, with 8 bits each of red, green, blue and alpha per pixel, not premultiplied. Colours are sRGB.
struct Thumbnail {
    int width = 0;
    int height = 0;
    QByteArray pixels;
};

constexpr int kMaxThumbnailSide = 96;  // pixels

/// The image that is open as `source`, upright, and scaled down if a side is longer than `side`.
///
/// Failures: 1 the image cannot be opened, 3 it cannot be decoded to its end.
Result<Thumbnail> thumbnailOf(int source, int side);
