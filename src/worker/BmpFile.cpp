#include "worker/BmpFile.h"

#include <QFile>
#include <QImageReader>
#include <QtEndian>
#include <array>
#include <cstdlib>
#include <memory>

using vips::VError;
using vips::VImage;

namespace {

/// The start of the file, zeros if it is shorter.
using Header = std::array<char, 54>;

/// The decoder does not say when it ran out of bytes, so pictures that are stored uncompressed must be there to their
/// last row.
bool isWhole(const Header& header, qint64 fileSize) {
    constexpr int kUncompressed = 0;
    constexpr int kUncompressedWithMasks = 3;
    const auto number = [&](qsizetype at) { return qFromLittleEndian<qint32>(header.data() + at); };
    if (number(14) < 40) return true;  // the oldest layout
    if (const int compression = number(30); compression != kUncompressed && compression != kUncompressedWithMasks)
        return true;
    const qint64 bitsPerPixel = qFromLittleEndian<quint16>(header.data() + 28);
    const qint64 rowBytes = (number(18) * bitsPerPixel + 31) / 32 * 4;
    return number(10) + rowBytes * std::llabs(number(22)) <= fileSize;
}

/// Qt would otherwise try to tell the kind itself, with every plugin there is.
void setUp(QImageReader& reader) {
    reader.setFormat("bmp");
    reader.setAutoDetectImageFormat(false);
    reader.setDecideFormatFromContent(false);
}

}  // namespace

std::optional<QSize> bmpSize(int descriptor) {
    QFile file;
    if (!file.open(descriptor, QIODevice::ReadOnly) || !file.seek(0)) return {};
    Header header{};
    file.peek(header.data(), header.size());
    QImageReader reader(&file, {});
    setUp(reader);
    const QSize size = reader.size();
    if (size.isEmpty() || !isWhole(header, file.size())) return {};
    return size;
}

VImage decodeBmp(int descriptor) {
    QFile file;
    if (!file.open(descriptor, QIODevice::ReadOnly) || !file.seek(0)) throw VError("cannot read the file");
    QImageReader reader(&file, {});
    setUp(reader);
    QImageReader::setAllocationLimit(0);  // the size has been looked at
    auto picture = std::make_unique<QImage>(reader.read());
    const bool hasAlpha = picture->hasAlphaChannel();
    picture->convertTo(hasAlpha ? QImage::Format_RGBA8888 : QImage::Format_RGBX8888);
    if (picture->isNull()) throw VError("cannot decode the picture");

    // Four bytes a pixel leave no padding between rows. The pixels are not copied, they live as long as the new image.
    const QImage& pixels = *picture;
    const auto image = VImage::new_from_memory(const_cast<uchar*>(pixels.constBits()), size_t(pixels.sizeInBytes()),
                                               pixels.width(), pixels.height(), 4, VIPS_FORMAT_UCHAR)
                           .copy(VImage::option()->set("interpretation", VIPS_INTERPRETATION_sRGB));
    g_object_set_data_full(G_OBJECT(image.get_image()), "picture", picture.release(),
                           [](gpointer p) { delete static_cast<QImage*>(p); });
    return hasAlpha ? image : image.extract_band(0, VImage::option()->set("n", 3));
}
