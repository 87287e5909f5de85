#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

namespace vips {
class VImage;
}

/// An upright picture without colour, in rows from the top, 0 black to 255 white.
struct GreyPicture {
    int width = 0;
    int height = 0;
    std::vector<uint8_t> pixels;

    [[nodiscard]] size_t at(int x, int y) const { return size_t(y) * size_t(width) + size_t(x); }
};

/// The image, upright and in grey. Transparent pixels become white, or black if the rest is bright; an image with more
/// pixels than any screen is scaled down. Throws vips::VError if the image cannot be decoded completely.
GreyPicture greyPicture(const vips::VImage& image);

/// The picture scaled by `scale`; the result must be at least one pixel in each direction.
GreyPicture resized(const GreyPicture& picture, double scale);

/// The picture turned clockwise by `quarters`, 0 to 3, of a full turn.
GreyPicture turned(const GreyPicture& picture, int quarters);
