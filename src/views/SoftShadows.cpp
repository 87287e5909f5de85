#include "views/SoftShadows.h"

#include <QPainter>
#include <algorithm>
#include <array>
#include <cmath>
#include <vector>

namespace {

/// Odd widths of three successive box filters that approximate a Gaussian: the variance of a box of width w is
/// (w² - 1) / 12, and variances add up.
std::array<int, 3> boxWidths(double sigma) {
    const double ideal = std::sqrt(4 * sigma * sigma + 1);
    int lower = int(ideal);
    if (lower % 2 == 0) --lower;
    const double lowers = (12 * sigma * sigma - 3.0 * lower * lower - 12.0 * lower - 9) / (-4.0 * lower - 4);
    std::array<int, 3> widths{};
    for (int i = 0; i < 3; ++i) widths[size_t(i)] = i < std::lround(lowers) ? lower : lower + 2;
    return widths;
}

/// Applies a box filter to a row or column of `count` bytes that are `stride` apart.
void boxBlur(uchar* first, int count, int stride, int width, std::vector<uchar>& line) {
    const int radius = width / 2;
    line.assign(size_t(count + 2 * radius + 1), 0);
    for (int i = 0; i < count; ++i) line[size_t(i + radius)] = first[i * stride];
    int sum = 0;
    for (int i = 0; i < width; ++i) sum += line[size_t(i)];
    for (int i = 0; i < count; ++i) {
        first[i * stride] = uchar((sum + radius) / width);
        sum += line[size_t(i + width)] - line[size_t(i)];
    }
}

SoftShadows::Shadow render(const QPainterPath& shape, double radius, const QColor& color, double scale) {
    const double sigma = radius / 2;
    const double margin = 3 * sigma;
    const QRectF bounds = shape.boundingRect().adjusted(-margin, -margin, margin, margin);
    const QSize size(int(std::ceil(bounds.width() * scale)) + 1, int(std::ceil(bounds.height() * scale)) + 1);

    QImage image(size, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    {
        QPainter painter(&image);
        painter.setRenderHint(QPainter::Antialiasing);
        painter.scale(scale, scale);
        painter.translate(-bounds.topLeft());
        painter.fillPath(shape, Qt::black);
    }
    std::vector<uchar> mask(size_t(size.width()) * size_t(size.height()));
    for (int y = 0; y < size.height(); ++y) {
        const auto* row = reinterpret_cast<const QRgb*>(image.constScanLine(y));
        for (int x = 0; x < size.width(); ++x) mask[size_t(y * size.width() + x)] = uchar(qAlpha(row[x]));
    }
    blurMask(mask, size.width(), size.height(), sigma * scale);
    for (int y = 0; y < size.height(); ++y) {
        auto* row = reinterpret_cast<QRgb*>(image.scanLine(y));
        for (int x = 0; x < size.width(); ++x) {
            const int alpha = int(std::lround(mask[size_t(y * size.width() + x)] * color.alphaF()));
            row[x] = qPremultiply(qRgba(color.red(), color.green(), color.blue(), alpha));
        }
    }
    return {image, QRectF(bounds.topLeft(), QSizeF(size) / scale)};
}

}  // namespace

void blurMask(std::vector<uchar>& mask, int width, int height, double sigma) {
    if (sigma < 0.3) return;
    std::vector<uchar> line;
    for (const int box : boxWidths(sigma)) {
        if (box < 2) continue;
        for (int y = 0; y < height; ++y) boxBlur(mask.data() + y * width, width, 1, box, line);
        for (int x = 0; x < width; ++x) boxBlur(mask.data() + x, height, width, box, line);
    }
}

SoftShadows::Shadow SoftShadows::shadow(const QPainterPath& shape, double radius, const QColor& color,
                                        double pixelsPerPoint) {
    // With interpolation, more than four pixels per standard deviation make no visible difference.
    const double scale = std::min(pixelsPerPoint, 4 / std::max(radius / 2, 0.1));
    const PictureKey key{shape, radius, color, scale};
    if (const auto* found = cache_.object(key)) return *found;
    Shadow made = render(shape, radius, color, scale);
    cache_.insert(key, new Shadow(made));
    return made;
}
