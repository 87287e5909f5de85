#pragma once

#include <vips/vips8>

#include "worker/GreyPicture.h"

/// The image upright and without colour. What is transparent becomes white, or black where the rest is bright; an image
/// that has more pixels than any screen is made smaller. Throws vips::VError when the image cannot be decoded to its
/// end.
GreyPicture greyPicture(const vips::VImage& image);

/// The picture at another size, which is at least a pixel each way.
GreyPicture resized(const GreyPicture& picture, double scale);

/// The picture turned clockwise by `quarters`, 0 to 3, of a full turn.
GreyPicture turned(const GreyPicture& picture, int quarters);
