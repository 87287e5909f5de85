#include "worker/GreyPicture.h"

#include <algorithm>
#include <cmath>
#include <memory>
#include <vips/vips8>

using vips::VImage;

namespace {

// Finding the ink takes about two dozen bytes per pixel.
constexpr double kMaxPixels = 24e6;
constexpr double kMaxSide = 30000;

VImage shrunk(const VImage& image) {
    const double width = image.width();
    const double height = image.height();
    const double scale = std::min(std::sqrt(kMaxPixels / (width * height)), kMaxSide / std::max(width, height));
    return scale < 1 ? image.resize(scale) : image;
}

/// Whether the visible part of an image, whose last band is alpha, is mostly bright.
bool isBright(const VImage& image) {
    return image.flatten().avg() > image.extract_band(image.bands() - 1).avg() / 2;
}

/// Uses the picture's own memory.
VImage over(const GreyPicture& picture) {
    return VImage::new_from_memory(const_cast<uint8_t*>(picture.pixels.data()), picture.pixels.size(), picture.width,
                                   picture.height, 1, VIPS_FORMAT_UCHAR);
}

GreyPicture inMemory(const VImage& image) {
    size_t size = 0;
    const std::unique_ptr<void, decltype(&g_free)> pixels(image.write_to_memory(&size), &g_free);
    const auto* bytes = static_cast<const uint8_t*>(pixels.get());
    return {image.width(), image.height(), {bytes, bytes + size}};
}

}  // namespace

GreyPicture greyPicture(const VImage& image) {
    VImage grey = shrunk(image).colourspace(VIPS_INTERPRETATION_B_W).copy_memory().autorot();
    if (grey.has_alpha()) {
        const double behind = isBright(grey) ? 0 : 255;
        grey = grey.flatten(VImage::option()->set("background", behind));
    }
    return inMemory(grey.extract_band(0).cast(VIPS_FORMAT_UCHAR));
}

GreyPicture resized(const GreyPicture& picture, double scale) {
    return inMemory(over(picture).resize(scale));
}

GreyPicture turned(const GreyPicture& picture, int quarters) {
    return inMemory(over(picture).rot(VipsAngle(quarters)));
}
