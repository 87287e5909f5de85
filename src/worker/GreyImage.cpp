#include "worker/GreyImage.h"

#include <algorithm>
#include <cmath>

namespace {

// What finding the ink keeps for each pixel is about a dozen bytes.
constexpr double mostPixels = 24e6;
constexpr double longestSide = 30000;

/// Runs one operation that makes an image of an image; null when either is.
template <class Operation, class... Arguments>
VipsPointer derived(Operation operation, const VipsPointer& image, Arguments... arguments) {
    VipsImage* result = nullptr;
    if (image) operation(image.get(), &result, arguments..., nullptr);
    return VipsPointer(result);
}

VipsPointer shrunk(VipsPointer image) {
    const double width = vips_image_get_width(image.get());
    const double height = vips_image_get_height(image.get());
    const double scale = std::min(std::sqrt(mostPixels / (width * height)), longestSide / std::max(width, height));
    return scale < 1 ? derived(vips_resize, image, scale) : std::move(image);
}

/// Whether what can be seen of an image with a last band of opacity is bright on the whole.
bool isBright(const VipsPointer& image) {
    double light = 0;
    double opacity = 0;
    const VipsPointer flat = derived(vips_flatten, image);
    const VipsPointer alpha = derived(vips_extract_band, image, vips_image_get_bands(image.get()) - 1);
    if (!flat || !alpha || vips_avg(flat.get(), &light, nullptr) != 0 ||
        vips_avg(alpha.get(), &opacity, nullptr) != 0) {
        return false;
    }
    return light > opacity / 2;
}

}  // namespace

std::optional<GreyPicture> greyPicture(VipsPointer image) {
    if (!image) return {};
    VipsPointer grey = derived(vips_colourspace, shrunk(std::move(image)), VIPS_INTERPRETATION_B_W);
    grey = derived(vips_autorot, VipsPointer(grey ? vips_image_copy_memory(grey.get()) : nullptr));
    if (grey && vips_image_hasalpha(grey.get())) {
        double behind = isBright(grey) ? 0 : 255;
        VipsArrayDouble* background = vips_array_double_new(&behind, 1);
        grey = derived(vips_flatten, grey, "background", background);
        vips_area_unref(VIPS_AREA(background));
    }
    grey = derived(vips_extract_band, derived(vips_cast, grey, VIPS_FORMAT_UCHAR), 0);
    if (!grey) return {};

    size_t size = 0;
    auto* pixels = static_cast<uint8_t*>(vips_image_write_to_memory(grey.get(), &size));
    if (pixels == nullptr) return {};
    GreyPicture picture{vips_image_get_width(grey.get()), vips_image_get_height(grey.get()), {pixels, pixels + size}};
    g_free(pixels);
    return picture;
}
