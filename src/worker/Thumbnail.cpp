#include "worker/Thumbnail.h"

#include <algorithm>
#include <memory>

#include "worker/ImageFile.h"
#include "worker/ImageOperations.h"

Result<Thumbnail> thumbnailOf(int source, int side) {
    const auto file = ImageFile::open(source);
    if (!file) return cannotOpenImage();
    const double shrink = std::max(1.0, double(std::max(file->size().width(), file->size().height())) / side);
    try {
        const auto image = shownWithin(plainColours(file->decode(shrink)), side);
        size_t size = 0;
        const std::unique_ptr<void, decltype(&g_free)> pixels(image.write_to_memory(&size), &g_free);
        return Thumbnail{image.width(), image.height(),
                         QByteArray(static_cast<const char*>(pixels.get()), qsizetype(size))};
    } catch (const vips::VError&) {
        return Failure{3, QStringLiteral("couldn't decode the image")};
    }
}
