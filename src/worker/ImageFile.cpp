#include "worker/ImageFile.h"

#include <unistd.h>

#include <algorithm>
#include <array>

#include "worker/BmpFile.h"
#include "worker/ImageKind.h"
#include "worker/Vips.h"

using vips::VError;
using vips::VImage;
using vips::VOption;
using vips::VSource;

namespace {

// The maximum side of a JPEG. Even stitched panoramas are smaller: 20000 x 20000 passes.
constexpr int kMaxSide = 65500;
constexpr qint64 kMaxPixels = 500'000'000;

// Shrinking in the decoder is coarse, so at least this factor is left to proper resampling.
constexpr double kLeftToResampling = 2;

/// Truncated files are rejected, even if the decoder could fill the rest with grey.
VOption* rowByRow() {
    return VImage::option()->set("access", VIPS_ACCESS_SEQUENTIAL)->set("fail_on", VIPS_FAIL_ON_TRUNCATED);
}

VImage openJpeg(const VSource& source, double shrink) {
    int factor = 8;
    while (factor > 1 && factor * kLeftToResampling > shrink) factor /= 2;
    return VImage::jpegload_source(source, rowByRow()->set("shrink", factor));
}

VImage openWebp(const VSource& source, double shrink) {
    return VImage::webpload_source(source, rowByRow()->set("scale", std::min(1.0, kLeftToResampling / shrink)));
}

VImage openWith(ImageKind kind, const VSource& source, double shrink) {
    switch (kind) {
        case ImageKind::png:
            return VImage::pngload_source(source, rowByRow());
        case ImageKind::jpeg:
            return openJpeg(source, shrink);
        case ImageKind::heif:
            loadVipsModule("heif");
            return VImage::heifload_source(source, rowByRow());
        case ImageKind::tiff:
            return VImage::tiffload_source(source, rowByRow());
        case ImageKind::webp:
            return openWebp(source, shrink);
        case ImageKind::gif:
            return VImage::gifload_source(source, rowByRow());
        case ImageKind::bmp:
            break;
    }
    throw VError("not a kind that libvips decodes");
}

bool isSane(QSize size) {
    return std::max(size.width(), size.height()) <= kMaxSide && qint64(size.width()) * size.height() <= kMaxPixels;
}

}  // namespace

std::optional<ImageFile> ImageFile::open(int source) {
    if (!startVips()) return {};
    std::array<char, kKindBytes> start{};
    const ssize_t got = ::pread(source, start.data(), start.size(), 0);
    const auto kind = imageKind(QByteArray(start.data(), std::max<ssize_t>(got, 0)));
    if (!kind) return {};

    if (kind == ImageKind::bmp) {
        const auto size = bmpSize(source);
        if (!size || !isSane(*size)) return {};
        return ImageFile([source](double) { return decodeBmp(source); }, *size);
    }
    try {
        const auto file = VSource::new_from_descriptor(source);
        const VImage header = openWith(*kind, file, 1);
        const QSize size(header.width(), header.height());
        if (!isSane(size)) return {};
        return ImageFile([file, kind](double shrink) { return openWith(*kind, file, shrink); }, size);
    } catch (const VError&) {
        return {};
    }
}

VImage ImageFile::decode(double shrink) const {
    // The shorter side of a long strip must not shrink to nothing.
    return decoder_(std::min(shrink, double(std::min(size_.width(), size_.height()))));
}
