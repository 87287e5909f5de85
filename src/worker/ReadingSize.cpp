#include "worker/ReadingSize.h"

#include <algorithm>
#include <cmath>

#include "worker/Recognition.h"
#include "worker/VipsPointer.h"

namespace {

// Recognition keeps several pictures of this size, and counts pixels in 16 bits.
constexpr double mostPixels = 40e6;
constexpr double longestSide = 30000;

}  // namespace

GreyPicture atReadingSize(Ink ink) {
    GreyPicture& picture = ink.picture;
    const double pixels = double(picture.width) * picture.height;
    const double scale =
        std::min({std::clamp(double(readingHeight) / ink.letterHeight, 0.5, 4.0), std::sqrt(mostPixels / pixels),
                  longestSide / std::max(picture.width, picture.height)});
    const VipsPointer before(vips_image_new_from_memory(picture.pixels.data(), picture.pixels.size(), picture.width,
                                                        picture.height, 1, VIPS_FORMAT_UCHAR));
    VipsImage* result = nullptr;
    if (!before || vips_resize(before.get(), &result, scale, nullptr) != 0) return std::move(picture);
    const VipsPointer after(result);
    size_t size = 0;
    auto* bytes = static_cast<uint8_t*>(vips_image_write_to_memory(after.get(), &size));
    if (bytes == nullptr) return std::move(picture);
    GreyPicture resized{vips_image_get_width(result), vips_image_get_height(result), {bytes, bytes + size}};
    g_free(bytes);
    return resized;
}
