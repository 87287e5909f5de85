#pragma once

#include <QCache>
#include <QColor>
#include <QImage>
#include <QString>

/// The creature's own symbols, rendered from their SVG drawings on first use. Main thread only.
class Symbols {
 public:
    /// The square picture of symbol `name` in `color`, `pixels` wide; null for a name without a drawing.
    QImage image(const QString& name, int pixels, const QColor& color);

 private:
    QCache<QString, QImage> cache_{32};
};
