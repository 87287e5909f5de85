#include "worker/ImageKind.h"

#include <QtEndian>
#include <algorithm>

namespace {

/// An ISO base media file begins with a box that lists its compatible brands.
bool isHeif(const QByteArray& start) {
    constexpr qsizetype kBrand = 4;
    if (start.size() < 12 || start.mid(4, 4) != "ftyp") return false;
    const auto boxEnd = qsizetype(qFromBigEndian<quint32>(start.constData()));
    static const QByteArray kBrands[] = {"heic", "heix", "heim", "heis", "hevc", "hevx", "mif1", "msf1"};
    for (qsizetype at = 8; at + kBrand <= std::min(boxEnd, start.size()); at += kBrand) {
        const bool isVersion = at == 12;
        if (!isVersion && std::ranges::find(kBrands, start.mid(at, kBrand)) != std::end(kBrands)) return true;
    }
    return false;
}

}  // namespace

std::optional<ImageKind> imageKind(const QByteArray& start) {
    if (start.startsWith("\x89PNG\r\n\x1a\n")) return ImageKind::png;
    if (start.startsWith("\xff\xd8\xff")) return ImageKind::jpeg;
    if (start.startsWith("GIF87a") || start.startsWith("GIF89a")) return ImageKind::gif;
    if (start.startsWith("RIFF") && start.mid(8, 4) == "WEBP") return ImageKind::webp;
    for (const char* tiff : {"II*\0", "MM\0*", "II+\0", "MM\0+"})
        if (start.startsWith(QByteArray::fromRawData(tiff, 4))) return ImageKind::tiff;
    if (isHeif(start)) return ImageKind::heif;
    if (start.startsWith("BM")) return ImageKind::bmp;
    return {};
}
