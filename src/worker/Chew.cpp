#include "worker/Chew.h"

#include "worker/ImageFile.h"
#include "worker/ImageOperations.h"

using vips::VError;
using vips::VImage;
using vips::VTarget;

namespace {

constexpr int kMaxSmallSide = 2000;

Failure cannotWrite() {
    return {2, QStringLiteral("couldn't write the result")};
}
Failure cannotFinish() {
    return {3, QStringLiteral("couldn't finish the file")};
}

/// The image for the new file, computed lazily as it is written.
VImage pictureFor(const ImageFile& file, ChewMode mode) {
    if (mode == ChewMode::png) return anonymous(upright(plainColours(file.decode(1))));
    if (mode == ChewMode::jpeg) return anonymous(upright(opaque(plainColours(file.decode(1)))));
    const QSize size = within(file.size(), kMaxSmallSide);
    const double shrink = double(file.size().width()) / size.width();
    return anonymous(upright(resized(opaque(plainColours(file.decode(shrink))), size)));
}

void write(const VImage& picture, ChewMode mode, int descriptor) {
    const auto target = VTarget::new_to_descriptor(descriptor);
    // Stripping would remove the profile too, so strip only images without one.
    const bool isBare = vips_image_get_typeof(picture.get_image(), VIPS_META_ICC_NAME) == 0;
    auto* const options = VImage::option()->set("strip", isBare);
    if (mode == ChewMode::png)
        // Good for photographs: smaller and, for 100 megapixels of noise, twice as fast as with the defaults.
        picture.pngsave_target(target, options->set("filter", VIPS_FOREIGN_PNG_FILTER_SUB)->set("compression", 4));
    else
        picture.jpegsave_target(target, options->set("Q", mode == ChewMode::smaller ? 65 : 85));
}

}  // namespace

std::optional<Failure> chew(int source, ChewMode mode, int result) {
    const auto image = ImageFile::open(source);
    if (!image) return cannotOpenImage();
    if (result < 0) return cannotWrite();
    try {
        write(pictureFor(*image, mode), mode, result);
    } catch (const VError&) {
        return cannotFinish();
    }
    return {};
}
