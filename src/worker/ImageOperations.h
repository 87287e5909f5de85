#pragma once

#include <QSize>
#include <vips/vips8>

// Operations on an image between decoding and encoding. Unless noted otherwise, they keep the colour profile if the
// colours are not converted, and are computed lazily, row by row.

/// The image as grey or RGB, with or without alpha, with 8 or 16 bits: what every PNG decoder supports. Other colour
/// spaces are converted to sRGB.
vips::VImage plainColours(const vips::VImage& image);

/// Makes an image of plain colours fit for JPEG: 8 bits, with transparent parts on white.
vips::VImage opaque(const vips::VImage& image);

/// An image of plain colours as it looks on a screen: upright, 8-bit sRGB with alpha, and scaled down if a side is
/// longer than `side`. Without a profile.
vips::VImage shownWithin(const vips::VImage& image, int side);

/// The size in pixels at which the longer side is at most `maxSide`; the other is truncated, but never to nothing.
QSize within(QSize size, int maxSide);

/// The image scaled down to `size` with a Lanczos filter.
vips::VImage resized(const vips::VImage& image, QSize size);

/// The image rotated according to its orientation tag; held in memory completely if it has to be rotated.
vips::VImage upright(const vips::VImage& image);

/// The image without metadata, except a colour profile that fits it: nothing about where, when or how it was taken.
vips::VImage anonymous(const vips::VImage& image);
