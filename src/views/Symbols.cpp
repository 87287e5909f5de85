#include "views/Symbols.h"

#include <QPainter>
#include <QSvgRenderer>
#include <cmath>

namespace {

constexpr double kSteps = 16;    // positions per pixel
constexpr int kInkPixels = 256;  // resolution at which a symbol's ink is measured

double stepped(double value) {
    return std::round(value * kSteps) / kSteps;
}

QImage rendered(QSvgRenderer& drawing, const QSize& size, const QRectF& square) {
    QImage image(size, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    QPainter painter(&image);
    painter.setRenderHint(QPainter::Antialiasing);
    drawing.render(&painter, square);
    return image;
}

}  // namespace

Symbols::Symbols() = default;
Symbols::~Symbols() = default;

QSvgRenderer& Symbols::drawing(const QString& name) {
    auto& drawing = drawings_[name];
    if (!drawing) drawing = std::make_unique<QSvgRenderer>(QStringLiteral(":/symbols/%1.svg").arg(name));
    return *drawing;
}

Symbols::Drawn Symbols::drawn(const QString& name, const QRectF& square, const QColor& color) {
    const QPoint place(int(std::floor(square.x())), int(std::floor(square.y())));
    const QRectF inside(stepped(square.x() - place.x()), stepped(square.y() - place.y()), stepped(square.width()),
                        stepped(square.height()));
    const PictureKey key{name, inside, color};
    if (const auto* found = images_.object(key)) return {*found, place};

    QSvgRenderer& svg = drawing(name);
    if (!svg.isValid()) return {};
    QImage image = rendered(svg, {int(std::ceil(inside.right())), int(std::ceil(inside.bottom()))}, inside);
    QPainter painter(&image);
    painter.setCompositionMode(QPainter::CompositionMode_SourceIn);
    painter.fillRect(image.rect(), color);
    painter.end();
    images_.insert(key, new QImage(image));
    return {image, place};
}

QRectF Symbols::ink(const QString& name) {
    const auto known = inks_.find(name);
    if (known != inks_.end()) return known->second;
    QRect ink;
    if (drawing(name).isValid()) {
        const QImage image = rendered(drawing(name), {kInkPixels, kInkPixels}, QRectF(0, 0, kInkPixels, kInkPixels));
        for (int y = 0; y < kInkPixels; ++y)
            for (int x = 0; x < kInkPixels; ++x)
                if (qAlpha(image.pixel(x, y)) > 127) ink |= QRect(x, y, 1, 1);
    }
    const QRectF share = ink.isEmpty() ? QRectF(0, 0, 1, 1)
                                       : QRectF(QPointF(ink.topLeft()) / kInkPixels, QSizeF(ink.size()) / kInkPixels);
    return inks_[name] = share;
}
