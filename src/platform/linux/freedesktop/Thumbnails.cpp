#include "platform/linux/freedesktop/Thumbnails.h"

#include <sys/stat.h>

#include <QBuffer>
#include <QCryptographicHash>
#include <QFile>
#include <QImageReader>
#include <QStandardPaths>
#include <QtEndian>
#include <algorithm>
#include <array>

#include "platform/FileUrls.h"

namespace {
struct Size {
    const char* folder;
    int pixels;
};
constexpr std::array<Size, 4> kSizes{{{"normal", 128}, {"large", 256}, {"x-large", 512}, {"xx-large", 1024}}};

/// The sizes in order of preference: the smallest that is large enough, larger ones, then smaller ones.
std::array<Size, 4> sizesFor(int pixels) {
    auto sizes = kSizes;
    const auto enough =
        std::find_if(sizes.begin(), sizes.end(), [&](const Size& size) { return size.pixels >= pixels; });
    std::reverse(sizes.begin(), enough);
    std::rotate(sizes.begin(), enough, sizes.end());
    return sizes;
}

/// The URLs by which programs may have stored the thumbnail: toolkits differ in which characters they encode.
QByteArrayList addressesOf(const QByteArray& path) {
    QByteArrayList addresses{"file://" + path.toPercentEncoding("/!*'()&=:@+$,"), fileUrl(path).toEncoded()};
    if (addresses.first() == addresses.last()) addresses.removeLast();
    return addresses;
}

/// The PNG without compressed texts and profiles, which the decoder would expand to any size although nobody needs
/// them. The size of the picture itself is in its header. Empty if the file is truncated.
QByteArray pictureAndText(const QByteArray& png) {
    constexpr qsizetype kSignature = 8, kFrame = 12;  // bytes; the frame of a chunk is its length, kind and checksum
    constexpr const char* kWanted[] = {"IHDR", "PLTE", "tRNS", "tEXt", "IDAT", "IEND"};
    QByteArray wanted = png.left(kSignature);
    for (qsizetype at = kSignature; at + kFrame <= png.size();) {
        const qsizetype end = at + kFrame + qFromBigEndian<quint32>(png.constData() + at);
        if (end > png.size()) break;
        const QByteArrayView kind(png.constData() + at + 4, 4);
        if (std::ranges::find(kWanted, kind) != std::end(kWanted)) wanted.append(png.constData() + at, end - at);
        if (kind == "IEND") return wanted;
        at = end;
    }
    return {};
}
}  // namespace

QImage readPng(const QString& path) {
    constexpr int kMaxSize = 1024;
    QFile file(path);
    if (path.isEmpty() || !file.open(QFile::ReadOnly) || file.size() > kMaxPictureFile) return {};
    QByteArray picture = pictureAndText(file.readAll());
    QBuffer buffer(&picture);
    QImageReader reader(&buffer, "png");
    const QSize size = reader.size();
    if (!size.isValid() || size.width() > kMaxSize || size.height() > kMaxSize) return {};
    return reader.read();
}

QImage fitted(const QImage& image, int pixels) {
    const bool small = image.width() <= pixels && image.height() <= pixels;
    const QImage fits = small ? image : image.scaled(pixels, pixels, Qt::KeepAspectRatio, Qt::SmoothTransformation);
    return fits.convertToFormat(QImage::Format_ARGB32_Premultiplied);
}

QImage thumbnailOf(const QByteArray& path, int pixels) {
    struct stat status = {};
    if (::stat(path.constData(), &status) != 0) return {};
    const QString cache =
        QStandardPaths::writableLocation(QStandardPaths::GenericCacheLocation) + QStringLiteral("/thumbnails/");
    for (const Size& size : sizesFor(pixels)) {
        for (const QByteArray& address : addressesOf(path)) {
            const QByteArray name = QCryptographicHash::hash(address, QCryptographicHash::Md5).toHex();
            const QImage image =
                readPng(cache + QLatin1String(size.folder) + u'/' + QLatin1String(name) + QLatin1String(".png"));
            // Some programs write fractional seconds.
            const QString modified = image.text(QStringLiteral("Thumb::MTime")).section(u'.', 0, 0);
            if (!image.isNull() && modified == QString::number(status.st_mtim.tv_sec)) return fitted(image, pixels);
        }
    }
    return {};
}
