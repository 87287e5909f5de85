#include "views/Canvas.h"

#include <QFontMetricsF>
#include <algorithm>
#include <cmath>

namespace {

constexpr qsizetype kMaxVisible = 500;  // characters on each side of the ellipsis

/// Whether `c` may be part of an emoji, which has colours and no outline: a surrogate, a symbol, or a variation
/// selector or keycap that turns a character into an emoji.
bool mayBeEmoji(QChar c) {
    constexpr QChar kKeycap(0x20e3), kLastSymbol(0x2bff), kEmojiSelector(0xfe0f);
    return c.isSurrogate() || (c >= kKeycap && c <= kLastSymbol) || c == kEmojiSelector;
}

/// The start of the baseline for a line that is aligned horizontally at the origin, and centred vertically there
/// between its ascent and descent.
QPointF startOf(const QString& line, const QFont& face, Qt::Alignment alignment) {
    const QFontMetricsF metrics(face);
    const double left = alignment & Qt::AlignLeft ? 0 : -metrics.horizontalAdvance(line) / 2;
    return {left, (metrics.ascent() - metrics.descent()) / 2};
}

}  // namespace

Canvas::Canvas(QPainter& painter, PictureCaches& caches, double devicePixelRatio)
    : painter_(painter), caches_(caches), ratio_(devicePixelRatio) {
    painter_.setRenderHints(QPainter::Antialiasing | QPainter::SmoothPixmapTransform);
}

void Canvas::with(const QTransform& transform, double opacity, const std::function<void()>& draw) {
    if (opacity <= 0) return;
    painter_.save();
    painter_.setTransform(transform, true);
    painter_.setOpacity(painter_.opacity() * std::min(opacity, 1.0));
    draw();
    painter_.restore();
}

void Canvas::clipped(const QPainterPath& clip, const std::function<void()>& draw) {
    painter_.save();
    painter_.setClipPath(clip, Qt::IntersectClip);
    draw();
    painter_.restore();
}

void Canvas::layer(const QRectF& bounds, const QPainterPath& mask, double opacity,
                   const std::function<void(Canvas&)>& draw) {
    if (opacity <= 0) return;
    // Aligned to device pixels, so that drawing the sheet does not blur it.
    const QTransform toDevice = painter_.deviceTransform();
    const QRect pixels = toDevice.mapRect(bounds).toAlignedRect();
    if (pixels.isEmpty()) return;
    const QTransform toSheet = toDevice * QTransform::fromTranslate(-pixels.x(), -pixels.y());
    const auto sheetWith = [&](const std::function<void(Canvas&, QPainter&)>& paint) {
        QImage sheet(pixels.size(), QImage::Format_ARGB32_Premultiplied);
        sheet.fill(Qt::transparent);
        QPainter painter(&sheet);
        painter.setTransform(toSheet);
        Canvas canvas(painter, caches_, ratio_);
        paint(canvas, painter);
        return sheet;
    };
    const QImage shape = sheetWith([&](Canvas& canvas, QPainter&) { canvas.fill(mask, Qt::black); });
    const QImage sheet = sheetWith([&](Canvas& canvas, QPainter& painter) {
        draw(canvas);
        painter.resetTransform();
        painter.setCompositionMode(QPainter::CompositionMode_DestinationIn);
        painter.drawImage(0, 0, shape);
    });
    painter_.save();
    painter_.setOpacity(painter_.opacity() * std::min(opacity, 1.0));
    painter_.setTransform(QTransform::fromScale(1 / ratio_, 1 / ratio_));
    painter_.drawImage(pixels.topLeft(), sheet);
    painter_.restore();
}

void Canvas::cover(const QRectF& rect, const QBrush& brush) {
    painter_.setRenderHint(QPainter::Antialiasing, false);
    painter_.fillRect(rect, brush);
    painter_.setRenderHint(QPainter::Antialiasing);
}

bool Canvas::paintsOnlyIn(const QRectF& rect) const {
    return painter_.hasClipping() && rect.contains(painter_.clipBoundingRect());
}

void Canvas::fill(const QPainterPath& path, const QBrush& brush) {
    painter_.fillPath(path, brush);
}

void Canvas::stroke(const QPainterPath& path, const QBrush& brush, double width) {
    QPen pen(brush, width, Qt::SolidLine, Qt::RoundCap, Qt::MiterJoin);
    pen.setMiterLimit(10);
    painter_.strokePath(path, pen);
}

void Canvas::shadow(const QPainterPath& shape, const QColor& color, double radius, const QPointF& offset,
                    const QRectF& hole) {
    if (color.alpha() == 0 || shape.isEmpty()) return;
    const auto made = caches_.shadows.shadow(shape, radius, color, ratio_);
    drawScaled(made.bounds.translated(offset), made.image, hole);
}

// In bands of a few rows: Qt hands taller scaled images to several threads, and waking those costs more than the
// drawing.
void Canvas::drawScaled(const QRectF& bounds, const QImage& image, const QRectF& hole) {
    constexpr int kRows = 64;
    const QTransform toDevice = painter_.deviceTransform();
    const QTransform drawing = painter_.transform();
    const QRect inner = hole.isEmpty() ? QRect() : toDevice.mapRect(hole).adjusted(1, 1, -1, -1).toRect();
    painter_.save();
    // Shadows fade out before their edges, and antialiased edges would triple the number of spans.
    painter_.setRenderHint(QPainter::Antialiasing, false);
    for (const QRect& part : QRegion(toDevice.mapRect(bounds).toAlignedRect()).subtracted(inner)) {
        for (int top = part.top(); top <= part.bottom(); top += kRows) {
            const QRect band(part.left(), top, part.width(), std::min(kRows, part.bottom() + 1 - top));
            painter_.save();
            painter_.setTransform(QTransform::fromScale(1 / ratio_, 1 / ratio_));
            painter_.setClipRect(band, Qt::IntersectClip);
            painter_.setTransform(drawing);
            painter_.drawImage(bounds, image);
            painter_.restore();
        }
    }
    painter_.restore();
}

// Scaled to device pixels first: the painter would skip pixels of an image that is much larger than its place.
void Canvas::picture(const QImage& image, const QRectF& frame, const QPainterPath& shape) {
    if (image.isNull()) return;
    const QSize pixels = (frame.size() * ratio_).toSize();
    const QImage scaled = image.scaled(pixels, Qt::KeepAspectRatioByExpanding, Qt::SmoothTransformation);
    const QPointF corner = QRectF(scaled.rect()).center() - QRectF({}, QSizeF(pixels)).center();
    QBrush brush(scaled.copy(QRect(corner.toPoint(), pixels)));
    brush.setTransform(QTransform::fromScale(1 / ratio_, 1 / ratio_) *
                       QTransform::fromTranslate(frame.left(), frame.top()));
    painter_.fillPath(shape, brush);
}

void Canvas::symbol(const QString& name, const QPointF& place, double size, const QColor& color,
                    Qt::Alignment alignment) {
    const double box = size * kSymbolBox;
    QPointF corner = place - QPointF(box / 2, box / 2);
    if (alignment & Qt::AlignRight) corner.setX(place.x() - caches_.symbols.ink(name).right() * box);
    if (alignment & Qt::AlignBottom) corner.setY(place.y() - caches_.symbols.ink(name).bottom() * box);
    const auto drawn =
        caches_.symbols.drawn(name, painter_.deviceTransform().mapRect(QRectF(corner, QSizeF(box, box))), color);
    painter_.save();
    painter_.setTransform(QTransform::fromScale(1 / ratio_, 1 / ratio_));
    painter_.drawImage(drawn.place, drawn.image);
    painter_.restore();
}

void Canvas::text(const QString& line, const QPointF& place, const TextStyle& style, const QColor& color,
                  Qt::Alignment alignment) {
    const QFont face = font(style.face, style.weight);
    const double scale = style.size / kFontPixels;
    painter_.save();
    painter_.translate(place);
    painter_.scale(scale, scale);
    if (std::any_of(line.begin(), line.end(), mayBeEmoji)) {
        painter_.setFont(face);
        painter_.setPen(color);
        painter_.drawText(startOf(line, face, alignment), line);
    } else {
        painter_.fillPath(outlineOf(line, face, alignment), color);
    }
    painter_.restore();
}

QPainterPath Canvas::outlineOf(const QString& line, const QFont& face, Qt::Alignment alignment) {
    const PictureKey key{line, face.family(), face.weight(), int(alignment)};
    if (const QPainterPath* known = caches_.texts.object(key)) return *known;
    auto* path = new QPainterPath;
    path->addText(startOf(line, face, alignment), face, line);
    const QPainterPath outline = *path;
    caches_.texts.insert(key, path);
    return outline;
}

double Canvas::textWidth(const QString& line, const TextStyle& style) {
    return QFontMetricsF(font(style.face, style.weight)).horizontalAdvance(line) * style.size / kFontPixels;
}

// Measures only the ends of a very long line: the rest would be elided anyway.
QString Canvas::elided(const QString& line, double width, const TextStyle& style, Qt::TextElideMode where) {
    const bool cut = line.size() > 2 * kMaxVisible;
    const QString ends = cut ? line.left(kMaxVisible) + line.right(kMaxVisible) : line;
    return QFontMetricsF(font(style.face, style.weight)).elidedText(ends, where, width * kFontPixels / style.size);
}

QBrush radialGradient(const QRectF& frame, const QPointF& unitCenter, double startRadius, double endRadius,
                      const Stops& stops) {
    const QPointF center(frame.left() + unitCenter.x() * frame.width(), frame.top() + unitCenter.y() * frame.height());
    QRadialGradient gradient(center, endRadius);
    const double start = std::min(startRadius / endRadius, 0.999);
    for (const auto& [place, color] : stops) gradient.setColorAt(start + (1 - start) * place, color);
    return gradient;
}

QBrush linearGradient(const QRectF& frame, const QPointF& unitFrom, const QPointF& unitTo, const Stops& stops) {
    const auto at = [&frame](const QPointF& unit) {
        return QPointF(frame.left() + unit.x() * frame.width(), frame.top() + unit.y() * frame.height());
    };
    QLinearGradient gradient(at(unitFrom), at(unitTo));
    for (const auto& [place, color] : stops) gradient.setColorAt(place, color);
    return gradient;
}
