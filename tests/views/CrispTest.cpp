#include <gtest/gtest.h>

#include <QSvgRenderer>
#include <numeric>

#include "views/Picture.h"

namespace {

/// A small picture of what `draw` draws.
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

TEST(Symbols, AreDrawnForTheVeryPixels) {
    const QPointF middle(40.5, 21.2);
    for (const double ratio : {1.0, 1.5, 2.0}) {
        for (const char* name : {"link", "text.quote", "timer", "xmark"}) {
            const QString symbol = QLatin1String(name);
            const QImage seen = drawn(ratio, [&](Canvas& c, QPainter&) { c.symbol(symbol, middle, 15, Qt::black); });
            const QImage best = drawn(ratio, [&](Canvas&, QPainter& painter) {
                QSvgRenderer(QStringLiteral(":/symbols/%1.svg").arg(symbol))
                    .render(&painter, QRectF(middle - QPointF(9.375, 9.375), QSizeF(18.75, 18.75)));
            });
            // A step of the place is a sixteenth of a pixel.
            EXPECT_LE(difference(seen, best), 255 / 16) << name << " at ratio " << ratio;
        }
    }
}

TEST(Text, OfMediumWeightLiesBetweenRegularAndSemibold) {
    const auto ink = [](QFont::Weight weight) {
        const QImage image = drawn(2, [weight](Canvas& canvas, QPainter&) {
            canvas.text(QStringLiteral("Hamburg"), {60, 30}, {15, weight, Face::rounded}, Qt::black);
        });
        return std::accumulate(image.constBits(), image.constBits() + image.sizeInBytes(), 0);
    };
    EXPECT_GT(ink(QFont::Medium), 1.05 * ink(QFont::Normal));
    EXPECT_GT(ink(QFont::DemiBold), 1.05 * ink(QFont::Medium));
}

TEST(Text, IsSetFromTheLeftAndElidedWhereAsked) {
    const QString line = QStringLiteral("Night Train Home");
    const TextStyle style{12};
    const double half = Canvas::textWidth(line, style) / 2;
    const QImage left = drawn(1, [&](Canvas& c, QPainter&) {
        c.text(line, {10, 30}, style, Qt::black, Qt::AlignLeft);
    });
    const QImage centred = drawn(1, [&](Canvas& c, QPainter&) { c.text(line, {10 + half, 30}, style, Qt::black); });
    EXPECT_LE(difference(left, centred), 2);
    EXPECT_GT(difference(left, drawn(1, [](Canvas&, QPainter&) {})), 200);

    // An endless line is shown by its ends without being measured as a whole.
    for (const QString& text : {line, line + QString(1000000, u'A') + line}) {
        const QString end = Canvas::elided(text, 60, style, Qt::ElideRight);
        const QString middle = Canvas::elided(text, 60, style, Qt::ElideMiddle);
        EXPECT_TRUE(end.startsWith(QStringLiteral("Ni")) && end.endsWith(u'\u2026')) << end.toStdString();
        EXPECT_TRUE(middle.startsWith(u'N') && middle.endsWith(u'e')) << middle.toStdString();
        EXPECT_LE(std::max(Canvas::textWidth(end, style), Canvas::textWidth(middle, style)), 60);
    }
}

}  // namespace
