#include "platform/Thumbnail.h"

std::optional<QImage> thumbnailIn(const std::optional<QJsonObject>& answer, int side) {
    if (!answer || answer->contains(QStringLiteral("error"))) return {};
    const int width = answer->value(QStringLiteral("width")).toInt();
    const int height = answer->value(QStringLiteral("height")).toInt();
    if (width < 1 || height < 1 || width > side || height > side) return {};
    const QByteArray base64 = answer->value(QStringLiteral("pixels")).toString().toLatin1();
    const auto pixels = QByteArray::fromBase64Encoding(base64, QByteArray::AbortOnBase64DecodingErrors);
    if (!pixels || pixels.decoded.size() != 4 * qsizetype(width) * height) return {};
    const auto* bytes = reinterpret_cast<const uchar*>(pixels.decoded.constData());
    return QImage(bytes, width, height, QImage::Format_RGBA8888).convertToFormat(QImage::Format_ARGB32_Premultiplied);
}
