#include <gtest/gtest.h>

#include "views/Picture.h"

using namespace Qt::StringLiterals;

namespace {

/// A hovered creature that hears music. Places of the row: from the top centre of the panel.
struct MusicRowFixture : PictureFixture {
    MusicRowFixture() {
        m.hovering = m.musicPlaying = true;
        m.musicTrack = u"Night — Band"_s;
        rest();
    }
    /// Where something of the row is seen.
    QRectF ink(double left, double right) {
        return seen({left, 80, right - left, 26}, [](QColor c) { return c.lightness() > 60; });
    }
    /// What the middle of a button shows.
    QImage button(double x) {
        return picture().copy(int((180 + x - 13) * kRatio), 83 * kRatio, 26 * kRatio, 20 * kRatio);
    }
    void pointAt(double x, double y) {
        root.pointerMoved(QPointF(180 + x, y));
        loop.advance(0.3);
    }
    void setArtwork(const QImage& image) {
        m.withAnimation(Animation::easeOut(0.25), [&] { m.artwork = image; });
    }

    static constexpr double kMiddle = 42 + 30 + 10 + 11, kButtons[] = {59, 85, 111};
};

TEST(MusicRow, ShowsATrackAndThreeButtons) {
    MusicRowFixture f;
    for (const double x : f.kButtons) {
        EXPECT_NEAR(f.ink(x - 13, x + 13).center().x(), x, 1) << x;
        EXPECT_NEAR(f.ink(x - 13, x + 13).center().y(), f.kMiddle, 1) << x;
    }
    const QRectF track = f.ink(-100, 45);
    EXPECT_NEAR(track.left(), -94, 1.5);
    EXPECT_NEAR(track.center().y(), f.kMiddle, 2);
    f.m.musicTrack = QString(200, u'm');
    EXPECT_NEAR(f.ink(-100, 45).right(), 38, 6);
    EXPECT_LE(f.ink(-100, 45).right(), 38.5) << "elided at its end";
    f.m.musicTrack = std::nullopt;
    EXPECT_NEAR(f.ink(-13 + 59 - 70, 13 + 59 - 70).center().x(), 59 - 70, 1) << "what is left moves to the middle";

    MusicRowFixture held;
    held.m.bites = QList{Bite::note(u"soup"_s)};
    held.rest();
    held.root.hit({180 + 59, held.kMiddle}).tap();
    EXPECT_TRUE(held.musicCommands.isEmpty()) << "the shelf has its place";
}

TEST(MusicRow, ItsButtonsAnswerAndGlow) {
    MusicRowFixture f;
    for (const double x : f.kButtons) {
        f.root.hit({180 + x, f.kMiddle}).tap();
        f.root.hit({180 + x, f.kMiddle - 11}).tap();
    }
    EXPECT_EQ(f.musicCommands, (QStringList{u"previous"_s, u"playpause"_s, u"next"_s}));
    EXPECT_EQ(f.taps, 3) << "above the buttons is the creature";
    const QImage playing = f.button(85);
    const QRectF still = f.ink(72, 98);
    f.pointAt(85, f.kMiddle);
    EXPECT_FALSE(f.seen({72, 83, 26, 20}, &PictureFixture::isOrange).isNull());
    EXPECT_TRUE(f.seen({46, 83, 26, 20}, &PictureFixture::isOrange).isNull());
    EXPECT_NEAR(f.ink(72, 98).width() / still.width(), 1.12, 0.08);
    f.pointAt(0, 60);
    EXPECT_LT(difference(f.button(85), playing), 3);
    f.m.musicPaused = true;
    EXPECT_GT(difference(f.button(85), playing), 100) << "it shows what it would do";
}

TEST(MusicRow, CoversFadeInOverANote) {
    MusicRowFixture f;
    const QRectF art(-124, 82, 22, 22);
    const auto isRed = [](QColor c) { return c.red() > 150 && c.green() < 90; };
    const QColor note = f.at(f.picture(), -120, 85);
    EXPECT_NEAR(note.lightness(), 20, 3);
    QImage wide(96, 54, QImage::Format_ARGB32_Premultiplied);
    wide.fill(Qt::blue);
    QPainter(&wide).fillRect(21, 0, 54, 54, Qt::red);
    f.setArtwork(wide);
    f.loop.advance(0.05);
    EXPECT_TRUE(f.seen(art, isRed).isNull()) << "still faint";
    f.loop.advance(0.5);
    EXPECT_NEAR(f.seen(art, isRed).width(), 21, 1) << "its middle fills the square";
    EXPECT_TRUE(f.seen({-124, 82, 0.6, 0.6}, isRed).isNull()) << "the corners are round";
    f.m.musicTrack = u"Next"_s;
    f.m.artwork = std::nullopt;
    EXPECT_EQ(f.at(f.picture(), -120, 85), note) << "the old cover is gone at once";
}

}  // namespace
