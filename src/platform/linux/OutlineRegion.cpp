#include "platform/linux/OutlineRegion.h"

#include <algorithm>
#include <cmath>
#include <limits>

QRegion pixelsInside(const QPainterPath& outline, double ratio) {
    const QPolygonF polygon = outline.toFillPolygon(QTransform::fromScale(ratio, ratio));
    const int top = int(std::floor(polygon.boundingRect().top())), bottom = int(polygon.boundingRect().bottom());
    QList<QRect> bands;
    for (int y = std::max(top, 0); y <= bottom; ++y) {
        const double middle = y + 0.5;
        double left = std::numeric_limits<double>::infinity(), right = -left;
        for (qsizetype i = 1; i < polygon.size(); ++i) {
            const QPointF a = polygon[i - 1], b = polygon[i];
            if ((a.y() <= middle) == (b.y() <= middle)) continue;
            const double x = a.x() + (b.x() - a.x()) * (middle - a.y()) / (b.y() - a.y());
            left = std::min(left, x);
            right = std::max(right, x);
        }
        if (!(left < right)) continue;
        const int from = int(std::lround(left)), to = int(std::lround(right));
        if (!bands.isEmpty() && bands.last().left() == from && bands.last().width() == to - from)
            bands.last().setBottom(y);
        else if (to > from)
            bands.append(QRect(from, y, to - from, 1));
    }
    QRegion region;
    region.setRects(bands.constData(), int(bands.size()));
    return region;
}
