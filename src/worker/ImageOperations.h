#pragma once

#include <QSize>
#include <vips/vips8>

// What is done to an image between its file and the new one. All of these keep the image's colour profile where the
// colours stay its own, and are computed row by row as the result is read, unless they say otherwise.

/// The image as grey or RGB, with or without alpha, of 8 or 16 bits: what every decoder of PNG knows. Other colours are
/// converted to sRGB.
vips::VImage plainColours(const vips::VImage& image);

/// An image of plain colours as JPEG can hold it: 8 bits, on white where it is transparent.
vips::VImage opaque(const vips::VImage& image);

/// An image of plain colours as it looks on a screen: upright, sRGB of 8 bits with alpha, and made smaller if a side is
/// longer than `side`. No profile is left.
vips::VImage shownWithin(const vips::VImage& image, int side);

/// The size in pixels at which the longer side is at most `maxSide`; the other is truncated, but never to nothing.
QSize within(QSize size, int maxSide);

/// The image at this size, which is no larger than its own: every pixel counts, weighed by a Lanczos window.
vips::VImage resized(const vips::VImage& image, QSize size);

/// The image the right way up, as its file says it is to be held; held in memory whole if it has to be turned.
vips::VImage upright(const vips::VImage& image);

/// The image with nothing but its pixels and a colour profile that fits them: nothing of where, when and with what it
/// was taken.
vips::VImage anonymous(const vips::VImage& image);
