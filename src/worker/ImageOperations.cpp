#include "worker/ImageOperations.h"

#include <algorithm>
#include <string>
#include <vector>

using vips::VImage;

namespace {

constexpr int kOpaque = 255;

bool isPlainFormat(VipsBandFormat format) {
    return format == VIPS_FORMAT_UCHAR || format == VIPS_FORMAT_USHORT;
}

VImage taggedAs(const VImage& image, VipsInterpretation interpretation) {
    return image.copy(VImage::option()->set("interpretation", interpretation));
}

VImage withoutProfile(const VImage& image) {
    VImage bare = image.copy();
    vips_image_remove(bare.get_image(), VIPS_META_ICC_NAME);
    return bare;
}

VImage converted(const VImage& image, VipsInterpretation space) {
    const VImage result = image.colourspace(space);
    return withoutProfile(result.format() == VIPS_FORMAT_UCHAR ? result : result.cast(VIPS_FORMAT_UCHAR));
}

/// Interprets bands of unknown meaning: the first three as RGB, or the first one as grey.
VImage guessed(const VImage& image) {
    const bool isGrey = image.bands() < 3;
    const bool isDeep = image.format() == VIPS_FORMAT_USHORT;
    const VImage bands = image.extract_band(0, VImage::option()->set("n", isGrey ? 1 : 3));
    const VImage narrow = isPlainFormat(bands.format()) ? bands : bands.cast(VIPS_FORMAT_UCHAR);
    if (isGrey) return taggedAs(narrow, isDeep ? VIPS_INTERPRETATION_GREY16 : VIPS_INTERPRETATION_B_W);
    return taggedAs(narrow, isDeep ? VIPS_INTERPRETATION_RGB16 : VIPS_INTERPRETATION_sRGB);
}

VImage inSrgb(const VImage& image) {
    if (vips_image_get_typeof(image.get_image(), VIPS_META_ICC_NAME) != 0) {
        try {
            return image.icc_transform("srgb", VImage::option()->set("embedded", true));
        } catch (const vips::VError&) {
            // The profile is broken, or for another colour space.
        }
    }
    return converted(image, VIPS_INTERPRETATION_sRGB);
}

/// The image with 8 bits.
VImage narrowed(const VImage& image) {
    if (image.format() != VIPS_FORMAT_USHORT) return image;
    // Keeps the high byte: a colour conversion would ignore the image's own profile.
    return taggedAs(image.cast(VIPS_FORMAT_UCHAR, VImage::option()->set("shift", true)),
                    image.bands() < 3 ? VIPS_INTERPRETATION_B_W : VIPS_INTERPRETATION_sRGB);
}

}  // namespace

VImage plainColours(const VImage& image) {
    switch (image.guess_interpretation()) {
        case VIPS_INTERPRETATION_CMYK:
            // Few programs show CMYK correctly. Uses the file's own profile, or a generic one.
            return image.icc_transform("srgb", VImage::option()->set("embedded", true)->set("input_profile", "cmyk"));
        case VIPS_INTERPRETATION_B_W:
        case VIPS_INTERPRETATION_GREY16:
            if (image.bands() > 2) return guessed(image);
            return isPlainFormat(image.format()) ? image : converted(image, VIPS_INTERPRETATION_B_W);
        case VIPS_INTERPRETATION_sRGB:
        case VIPS_INTERPRETATION_RGB16:
            if (image.bands() > 4) return guessed(image);
            return isPlainFormat(image.format()) ? image : converted(image, VIPS_INTERPRETATION_sRGB);
        case VIPS_INTERPRETATION_LAB:
        case VIPS_INTERPRETATION_LABQ:
        case VIPS_INTERPRETATION_LABS:
        case VIPS_INTERPRETATION_XYZ:
        case VIPS_INTERPRETATION_scRGB:
            return converted(image, VIPS_INTERPRETATION_sRGB);
        default:
            return guessed(image);
    }
}

VImage opaque(const VImage& image) {
    const VImage narrow = narrowed(image);
    if (!narrow.has_alpha()) return narrow;
    const std::vector<double> white(size_t(narrow.bands()) - 1, kOpaque);
    return narrow.flatten(VImage::option()->set("background", white));
}

VImage shownWithin(const VImage& image, int side) {
    const VImage small =
        narrowed(image).thumbnail_image(side, VImage::option()->set("height", side)->set("size", VIPS_SIZE_DOWN));
    const VImage rgb = inSrgb(small);
    return rgb.has_alpha() ? rgb : rgb.bandjoin(kOpaque);
}

QSize within(QSize size, int maxSide) {
    const int longer = std::max(size.width(), size.height());
    if (longer <= maxSide) return size;
    const auto scaled = [&](int side) { return std::max(1, int(qint64(side) * maxSide / longer)); };
    return {scaled(size.width()), scaled(size.height())};
}

VImage resized(const VImage& image, QSize size) {
    if (QSize(image.width(), image.height()) == size) return image;
    return image.reduce(double(image.width()) / size.width(), double(image.height()) / size.height());
}

VImage upright(const VImage& image) {
    constexpr int kUpright = 1;
    if (vips_image_get_orientation(image.get_image()) == kUpright) return image;
    return image.copy_memory().autorot();
}

VImage anonymous(const VImage& image) {
    VImage result = image.copy();
    char** const fields = vips_image_get_fields(result.get_image());
    for (char** field = fields; *field; ++field)
        if (std::string(*field) != VIPS_META_ICC_NAME) vips_image_remove(result.get_image(), *field);
    g_strfreev(fields);
    if (vips_image_get_typeof(result.get_image(), VIPS_META_ICC_NAME) == 0) return result;

    size_t size = 0;
    const void* const profile = result.get_blob(VIPS_META_ICC_NAME, &size);
    const bool fits = vips_icc_is_compatible_profile(result.get_image(), profile, size);
    return fits ? result : withoutProfile(result);
}
