#pragma once

#include <QByteArray>

#include "worker/Result.h"

/// In rows from the top, of each pixel red, green, blue and alpha with 8 bits, not premultiplied. Colours are sRGB.
struct Thumbnail {
    int width = 0;
    int height = 0;
    QByteArray pixels;
};

constexpr int kMaxThumbnailSide = 96;  // pixels

/// The image that `source` reads, upright, and made smaller where a side is longer than `side`.
///
/// Failures: 1 the image cannot be opened, 3 it cannot be decoded to its end.
Result<Thumbnail> thumbnailOf(int source, int side);
