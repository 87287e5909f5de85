#pragma once

#include <QCache>
#include <QColor>
#include <QImage>
#include <QRectF>
#include <QString>
#include <map>
#include <memory>

#include "views/PictureKey.h"

class QSvgRenderer;

/// The creature's symbols, rendered from SVG for the exact device pixels that they will cover. Main thread only.
class Symbols {
 public:
    struct Drawn {
        QImage image;
        QPoint place;  ///< of its top left pixel
    };

    Symbols();
    ~Symbols();

    /// The symbol `name` in `color`, filling `square` of the device, to draw without scaling. The square is rounded to
    /// 1/16 pixel, so that the small steps of breathing hit the cache. A null image if there is no such symbol.
    Drawn drawn(const QString& name, const QRectF& square, const QColor& color);

    /// The bounding box of the symbol's ink in the unit square; the whole square if there is no such symbol.
    QRectF ink(const QString& name);

 private:
    QSvgRenderer& drawing(const QString& name);

    std::map<QString, std::unique_ptr<QSvgRenderer>> drawings_;
    std::map<QString, QRectF> inks_;
    QCache<PictureKey, QImage> images_{64};
};
