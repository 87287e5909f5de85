#include <gtest/gtest.h>

#include <QSvgRenderer>

#include "views/Picture.h"

namespace {

/// A small picture of what `draw` draws in black.
QImage drawn(double ratio, const std::function<void(Canvas&, QPainter&)>& draw) {
    QImage image(QSize(120, 60) * ratio, QImage::Format_ARGB32_Premultiplied);
    image.setDevicePixelRatio(ratio);
    image.fill(Qt::transparent);
    QPainter painter(&image);
    PictureCaches caches;
    Canvas canvas(painter, caches, ratio);
    draw(canvas, painter);
    return image;
}

/// The sum of `value` of the opacities of each pixel and its left neighbour, 0 to 1.
double sum(const QImage& image, double (*value)(double, double)) {
    double all = 0;
    for (int y = 0; y < image.height(); ++y)
        for (int x = 1; x < image.width(); ++x)
            all += value(qAlpha(image.pixel(x, y)) / 255.0, qAlpha(image.pixel(x - 1, y)) / 255.0);
    return all;
}

TEST(Symbols, AreAsSharpAsTheirDrawings) {
    const auto sharpness = [](double a, double b) { return (a - b) * (a - b); };
    for (const double ratio : {1.0, 1.5, 2.0}) {
        for (const char* name : {"link", "text.quote", "timer", "xmark"}) {
            const QString symbol = QLatin1String(name);
            const QPointF middle(40.5, 21);
            const QImage seen = drawn(ratio, [&](Canvas& c, QPainter&) { c.symbol(symbol, middle, 15, Qt::black); });
            const QImage best = drawn(ratio, [&](Canvas&, QPainter& painter) {
                QSvgRenderer(QStringLiteral(":/symbols/%1.svg").arg(symbol))
                    .render(&painter, QRectF(middle - QPointF(9.375, 9.375), QSizeF(18.75, 18.75)));
            });
            EXPECT_GT(sum(seen, sharpness), 0.97 * sum(best, sharpness)) << name << " at ratio " << ratio;
        }
    }
}

TEST(Text, OfMediumWeightLiesBetweenRegularAndSemibold) {
    const auto ink = [](QFont::Weight weight) {
        const auto draw = [weight](Canvas& canvas, QPainter&) {
            canvas.text(QStringLiteral("Hamburg"), {60, 30}, {15, weight, Face::rounded}, Qt::black);
        };
        return sum(drawn(2, draw), [](double a, double) { return a; });
    };
    EXPECT_GT(ink(QFont::Medium), 1.05 * ink(QFont::Normal));
    EXPECT_GT(ink(QFont::DemiBold), 1.05 * ink(QFont::Medium));
}

}  // namespace
