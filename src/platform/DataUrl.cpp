#include "platform/DataUrl.h"

#include <QHash>

namespace {

const QByteArray kScheme = "data:";

QString extensionOf(const QByteArray& mimeType) {
    static const QHash<QByteArray, const char*> extensions{{"image/png", "png"},
                                                           {"image/jpeg", "jpg"},
                                                           {"image/jpg", "jpg"},
                                                           {"image/gif", "gif"},
                                                           {"image/webp", "webp"},
                                                           {"image/avif", "avif"},
                                                           {"image/bmp", "bmp"},
                                                           {"image/tiff", "tiff"},
                                                           {"image/svg+xml", "svg"},
                                                           {"image/heic", "heic"},
                                                           {"image/apng", "png"},
                                                           {"image/x-icon", "ico"},
                                                           {"image/vnd.microsoft.icon", "ico"}};
    return QString::fromLatin1(extensions.value(mimeType));
}

}  // namespace

bool isDataUrl(const QByteArray& address) {
    return address.left(kScheme.size()).compare(kScheme, Qt::CaseInsensitive) == 0;
}

// RFC 2397: data:[type][;parameter]...[;base64],bytes
std::optional<DataImage> imageInDataUrl(const QByteArray& address) {
    const qsizetype comma = address.indexOf(',');
    if (!isDataUrl(address) || comma < 0) return {};
    const auto head = address.mid(kScheme.size(), comma - kScheme.size()).toLower().split(';');
    DataImage image{extensionOf(head.first().trimmed()), QByteArray::fromPercentEncoding(address.mid(comma + 1))};
    if (image.extension.isEmpty()) return {};
    if (head.size() > 1 && head.last().trimmed() == "base64") {
        const bool forUrls = image.bytes.contains('-') || image.bytes.contains('_');
        image.bytes =
            QByteArray::fromBase64(image.bytes, forUrls ? QByteArray::Base64UrlEncoding : QByteArray::Base64Encoding);
    }
    if (image.bytes.isEmpty()) return {};
    return image;
}
