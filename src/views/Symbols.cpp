#include "views/Symbols.h"

#include <QPainter>
#include <QSvgRenderer>

QImage Symbols::image(const QString& name, int pixels, const QColor& color) {
    const QString key = QStringLiteral("%1 %2 %3").arg(name).arg(pixels).arg(color.name(QColor::HexArgb));
    if (const auto* found = cache_.object(key)) return *found;

    QSvgRenderer drawing(QStringLiteral(":/symbols/%1.svg").arg(name));
    if (!drawing.isValid()) return {};
    QImage image(pixels, pixels, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    QPainter painter(&image);
    drawing.render(&painter);
    painter.setCompositionMode(QPainter::CompositionMode_SourceIn);
    painter.fillRect(image.rect(), color);
    painter.end();
    cache_.insert(key, new QImage(image));
    return image;
}
