#include "views/FilePicture.h"

#include <QPainter>
#include <QPainterPath>
#include <vector>

#include "views/Colors.h"
#include "views/Fonts.h"
#include "views/Shapes.h"
#include "views/SoftShadows.h"

namespace {

constexpr double kPixelsPerPoint = 2;
constexpr double kShadowRadius = 2;
constexpr double kShadowDrop = 1;
constexpr double kShadowOpacity = 0.4;
constexpr double kFold = 6.5;  // the dog-ear of the sheet
constexpr int kMaxLabel = 4;   // characters

QPainterPath sheetOutline(const QRectF& sheet) {
    QPainterPath path;
    path.moveTo(sheet.left() + 2.5, sheet.top());
    path.lineTo(sheet.right() - kFold, sheet.top());
    path.lineTo(sheet.right(), sheet.top() + kFold);
    path.lineTo(sheet.right(), sheet.bottom() - 2.5);
    path.quadTo(sheet.bottomRight(), {sheet.right() - 2.5, sheet.bottom()});
    path.lineTo(sheet.left() + 2.5, sheet.bottom());
    path.quadTo(sheet.bottomLeft(), {sheet.left(), sheet.bottom() - 2.5});
    path.lineTo(sheet.left(), sheet.top() + 2.5);
    path.quadTo(sheet.topLeft(), {sheet.left() + 2.5, sheet.top()});
    return path;
}

void drawSheet(QPainter& painter, const QString& extension) {
    const QRectF sheet(4, 1, 22, 28);
    QLinearGradient paper(sheet.topLeft(), sheet.bottomLeft());
    paper.setColorAt(0, gray(1));
    paper.setColorAt(1, gray(0.86));
    painter.fillPath(sheetOutline(sheet), paper);
    QPainterPath corner;
    corner.moveTo(sheet.right() - kFold, sheet.top());
    corner.lineTo(sheet.right() - kFold, sheet.top() + kFold - 1);
    corner.quadTo({sheet.right() - kFold, sheet.top() + kFold}, {sheet.right() - kFold + 1, sheet.top() + kFold});
    corner.lineTo(sheet.right(), sheet.top() + kFold);
    painter.fillPath(corner, gray(0.72));

    if (extension.isEmpty() || extension.size() > kMaxLabel) {
        painter.setPen(QPen(gray(0.66), 1.2, Qt::SolidLine, Qt::RoundCap));
        for (const double y : {13.0, 17.0, 21.0}) painter.drawLine(QPointF(8.5, y), QPointF(y > 20 ? 17 : 21.5, y));
        return;
    }
    QFont label = font(Face::rounded, QFont::Bold);
    label.setPixelSize(7);
    painter.setFont(label);
    painter.setPen(accentOrange());
    painter.drawText(sheet.adjusted(-2, 8, 2, 0), Qt::AlignCenter, extension.toUpper());
}

void drawIcon(QPainter& painter, const QImage& icon) {
    const QSizeF fitted = QSizeF(icon.size()).scaled(FilePicture::kSide, FilePicture::kSide, Qt::KeepAspectRatio);
    const QPointF corner((FilePicture::kSide - fitted.width()) / 2, (FilePicture::kSide - fitted.height()) / 2);
    const QImage right = icon.scaled((fitted * kPixelsPerPoint).toSize().expandedTo({1, 1}), Qt::IgnoreAspectRatio,
                                     Qt::SmoothTransformation);
    painter.drawImage(QRectF(corner, fitted), right);
}

/// The shadow that the picture casts, of the picture's size.
QImage shadowOf(const QImage& picture) {
    const int width = picture.width(), height = picture.height();
    std::vector<uchar> mask(size_t(width) * size_t(height));
    for (int y = 0; y < height; ++y) {
        for (int x = 0; x < width; ++x)
            mask[size_t(y) * size_t(width) + size_t(x)] = uchar(qAlpha(picture.pixel(x, y)));
    }
    blurMask(mask, width, height, kShadowRadius / 2 * kPixelsPerPoint);
    QImage shadow(picture.size(), QImage::Format_ARGB32_Premultiplied);
    for (int y = 0; y < height; ++y) {
        auto* line = reinterpret_cast<QRgb*>(shadow.scanLine(y));
        for (int x = 0; x < width; ++x)
            line[x] = qRgba(0, 0, 0, int(kShadowOpacity * mask[size_t(y) * size_t(width) + size_t(x)]));
    }
    return shadow;
}

}  // namespace

QImage FilePicture::make(const QImage& icon, const QString& extension) {
    const int pixels = int((kSide + 2 * kMargin) * kPixelsPerPoint);
    QImage picture(pixels, pixels, QImage::Format_ARGB32_Premultiplied);
    picture.fill(Qt::transparent);
    {
        QPainter painter(&picture);
        painter.setRenderHints(QPainter::Antialiasing | QPainter::SmoothPixmapTransform);
        painter.scale(kPixelsPerPoint, kPixelsPerPoint);
        painter.translate(kMargin, kMargin);
        if (icon.isNull())
            drawSheet(painter, extension);
        else
            drawIcon(painter, icon);
    }
    QImage whole = picture;
    QPainter painter(&whole);
    painter.setCompositionMode(QPainter::CompositionMode_DestinationOver);
    painter.drawImage(QPointF(0, kShadowDrop * kPixelsPerPoint), shadowOf(picture));
    painter.end();
    whole.setDevicePixelRatio(kPixelsPerPoint);
    return whole;
}
