#include <gtest/gtest.h>

#include <QRandomGenerator>
#include <QSvgRenderer>
#include <numeric>

#include "views/Picture.h"

namespace {

/// A small picture of what `draw` draws.
QImage small(double ratio, const std::function<void(Canvas&, QPainter&)>& draw) {
    PictureCaches caches;
    return drawn({120, 60}, ratio, Qt::transparent, caches, draw);
}

TEST(Symbols, AreDrawnForTheVeryPixels) {
    const QPointF middle(40.5, 21.2);
    for (const double ratio : {1.0, 1.5, 2.0}) {
        for (const char* name : {"link", "text.quote", "timer", "xmark"}) {
            const QString symbol = QLatin1String(name);
            const QImage seen = small(ratio, [&](Canvas& c, QPainter&) { c.symbol(symbol, middle, 15, Qt::black); });
            const QImage best = small(ratio, [&](Canvas&, QPainter& painter) {
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
        const QImage image = small(2, [weight](Canvas& canvas, QPainter&) {
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
    const auto shown = [&](double x, Qt::Alignment alignment) {
        return small(1, [&](Canvas& c, QPainter&) { c.text(line, {x, 30}, style, Qt::black, alignment); });
    };
    const QImage left = shown(10, Qt::AlignLeft);
    EXPECT_LE(difference(left, shown(10 + Canvas::textWidth(line, style) / 2, Qt::AlignHCenter)), 2);
    EXPECT_GT(difference(left, small(1, [](Canvas&, QPainter&) {})), 200);

    // An endless line is shown by its ends without being measured as a whole.
    for (const QString& text : {line, line + QString(1000000, u'A') + line}) {
        const QString end = Canvas::elided(text, 60, style, Qt::ElideRight);
        const QString middle = Canvas::elided(text, 60, style, Qt::ElideMiddle);
        EXPECT_TRUE(end.startsWith(QStringLiteral("Ni")) && end.endsWith(u'\u2026')) << end.toStdString();
        EXPECT_TRUE(middle.startsWith(u'N') && middle.endsWith(u'e')) << middle.toStdString();
        EXPECT_LE(std::max(Canvas::textWidth(end, style), Canvas::textWidth(middle, style)), 60);
    }
}

TEST(Shadow, BlursAsAGaussianDoes) {
    constexpr int width = 120, height = 3 * 40;
    constexpr double sigma = 8;
    std::vector<uchar> mask(width * height, 0);
    for (size_t i = 0; i < mask.size(); ++i) mask[i] = i % width < width / 2 ? 255 : 0;
    blurMask(mask, width, height, sigma);
    for (int x = 36; x < 84; ++x) {
        // The edge lies between pixels 59 and 60.
        const double expected = 127.5 * std::erfc((x + 0.5 - 60) / (sigma * std::sqrt(2.0)));
        EXPECT_NEAR(mask[size_t(height / 2 * width + x)], expected, 6) << x;
    }
}

const QRegion kPanel(0, 0, 360, 230);

/// The panel as the program keeps it: each frame clears and paints only what differs from the frame before.
struct Screen {
    explicit Screen(double pixelsPerPoint)
        : ratio(pixelsPerPoint), image(drawn({360, 230}, ratio, Qt::transparent, caches, [](auto&, auto&) {})) {}

    void draw(const DisplayList& next, const QRegion& damage = kPanel) {
        QPainter painter(&image);
        painter.setCompositionMode(QPainter::CompositionMode_Source);
        for (const QRect& part : damage) painter.fillRect(part, Qt::transparent);
        painter.setCompositionMode(QPainter::CompositionMode_SourceOver);
        painter.setClipRegion(damage);
        Canvas canvas(painter, caches, ratio);
        next.paint(canvas, damage);
    }

    double ratio;
    PictureCaches caches;
    QImage image;
};

struct Step {
    const char* name;
    std::function<void(NotchModel&)> change;
    std::optional<Animation> how = {};
};

const Step kLife[] = {
    {"looks", [](auto& m) { m.cursor = QPointF(100, 300); }},
    {"opens", [](auto& m) { m.hovering = true; }, commonSpring()},
    {"boops", [](auto& m) { ++m.boopCount; }},
    {"closes at once", [](auto& m) { m.hovering = false; }, commonSpring()},
    {"is startled", [](auto& m) { ++m.startleCount; }},
    {"charges", [](auto& m) { m.charging = true; }},
    {"holds", [](auto& m) { m.timers = QList<HeldTimer>(1); }, commonSpring()},
    {"gets a drag", [](auto& m) { m.dragNear = true; }, commonSpring()},
    {"and loses it", [](auto& m) { m.dragNear = false; }, commonSpring()},
    {"camera", [](auto& m) { m.cameraInUse = true; }, Animation::easeInOut(0.45)},
    {"is told of a meeting", [](auto& m) { m.eventWhisper = QStringLiteral("soon"); }},  // recolours the glyph
    {"full disk", [](auto& m) { m.diskFull = true; }},
    {"sleeps", [](auto& m) { m.asleep = true; }, Animation::easeInOut(0.7)},
    {"wakes", [](auto& m) { m.markActivity(0); }},
    {"downloads", [](auto& m) { m.downloading = true; }},
    {"hides", [](auto& m) { m.hidden = true; }, commonSpring()},
    {"comes back", [](auto& m) { m.hidden = false; }, commonSpring()},
    {"weather", [](auto& m) { m.toy = Toy::weather; }, commonSpring()},
    {"critter", [](auto& m) { m.toy = Toy::critter; }, commonSpring()},
};

TEST(Damage, OfALookIsTheEyes) {
    PictureFixture f;
    f.rest();
    DisplayList before, moved;
    f.root.compose(before);
    f.m.cursor = f.m.cursor.get() + QPointF(300, 0);
    f.root.compose(moved);
    const QSize eyes = before.changesTo(moved).boundingRect().size();
    EXPECT_TRUE(!eyes.isEmpty() && eyes.width() <= 56 && eyes.height() <= 24);
}

TEST(Damage, PaintingOnlyWhatChangedLeavesTheSamePictureAsPaintingAll) {
    for (const double ratio : {1.0, 1.5, 2.0}) {
        PictureFixture f;
        QRandomGenerator random(1);
        Screen kept(ratio);
        DisplayList shown;
        f.root.compose(shown);
        kept.draw(shown);
        const auto differing = [&] {
            Screen fresh(ratio);
            fresh.draw(shown);
            return difference(kept.image, fresh.image);
        };
        for (const auto& [name, change, how] : kLife) {
            how ? f.m.withAnimation(*how, [&, &change = change] { change(f.m); }) : change(f.m);
            for (int frame = 0; frame < 24; ++frame) {
                // Frames are never quite on time.
                f.loop.advance(frame < 12 ? (0.7 + 0.6 * random.generateDouble()) / 60 : 0.11);
                DisplayList next;
                f.root.compose(next);
                kept.draw(next, shown.changesTo(next) & kPanel);
                shown = std::move(next);
                // Clipping to a region and to an edge at once rounds a little differently than to the edge alone.
                ASSERT_LE(differing(), 8) << name << ", frame " << frame << " at ratio " << ratio;
            }
            kept.draw(shown);
            EXPECT_EQ(differing(), 0) << "what was kept from the way to " << name << " is seen at ratio " << ratio;
        }
    }
}

}  // namespace
