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

/// The creature's own symbols, rendered from their SVG drawings for the very pixels on which they will lie. Main thread
/// only.
class Symbols {
 public:
    struct Drawn {
        QImage image;
        QPoint place;  ///< of its top left pixel
    };

    Symbols();
    ~Symbols();

    /// The symbol `name` in `color` as it fills `square` of the device, to be laid down without scaling. The square is
    /// taken to a sixteenth of a pixel, so that the small steps of breathing find again what was rendered. A null image
    /// for a name without a drawing.
    Drawn drawn(const QString& name, const QRectF& square, const QColor& color);

    /// The part of the unit square that symbol `name` leaves a trace in; all of it for a name without a drawing.
    QRectF ink(const QString& name);

 private:
    QSvgRenderer& drawing(const QString& name);

    std::map<QString, std::unique_ptr<QSvgRenderer>> drawings_;
    std::map<QString, QRectF> inks_;
    QCache<PictureKey, QImage> images_{64};
};
