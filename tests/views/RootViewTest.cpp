#include <gtest/gtest.h>

#include "views/Picture.h"

namespace {

struct BodyFixture : PictureFixture {
    QRectF outline() const { return root.outline().boundingRect(); }
};

TEST(Body, OpensWithASpringAndThenRests) {
    BodyFixture f;
    f.rest();
    const double flares = f.outline().width() - 185;
    f.m.withAnimation(commonSpring(), [&] { f.m.hovering = true; });
    EXPECT_NEAR(f.outline().width() - flares, 185, 1.5);
    f.loop.advance(0.267);
    EXPECT_GT(f.outline().width() - flares, 215.5) << "it overshoots before it rests";
    EXPECT_LE(f.root.nextFrame(), f.clock.uptime());
    f.loop.advance(2);
    EXPECT_EQ(f.outline().size(), QSizeF(214 + flares, 108));
    EXPECT_TRUE(std::isinf(f.root.nextFrame()));
}

TEST(Body, BreathesInWallTimeAndHoldsItsBreathWhileAttending) {
    BodyFixture f;
    const double period = 3.4;
    const auto scaleAt = [&](double phase) {
        f.clock.setNow({period * 1000 + phase * period - 0.25});
        f.loop.advance(0.25);
        return f.outline().height() / 58;
    };
    EXPECT_NEAR(scaleAt(0), 1, 1e-4);
    EXPECT_NEAR(scaleAt(0.25), 0.996, 1e-3);
    EXPECT_NEAR(scaleAt(0.5), 0.992, 1e-4);
    f.m.hovering = true;
    EXPECT_EQ(f.outline().height(), 108);
}

TEST(Body, BoopSquashesAndWobblesBackEachTimeAndIsNeverCutOff) {
    BodyFixture f;
    f.m.diskFull = f.m.hovering = true;
    f.shelf.addTimer(5);
    f.rest();
    const QSizeF rest = f.outline().size();
    EXPECT_NEAR(rest.width(), (320 + 2 * 9) * 1.045, 1);
    const double depth = f.root.depth();
    for (int boop = 0; boop < 2; ++boop) {
        ++f.m.boopCount;
        EXPECT_NEAR(f.outline().width() / rest.width(), 1.18, 1e-3);
        EXPECT_NEAR(f.outline().height() / rest.height(), 0.74, 1e-3);
        for (int frame = 0; frame < (boop ? 180 : 7); ++frame, f.loop.advance(1 / 60.0)) {
            DisplayList list;
            f.root.compose(list);
            const QRect drawn = DisplayList().changesTo(list).boundingRect();
            EXPECT_TRUE(drawn.left() >= -RootView::kOverdraw && drawn.bottom() <= depth) << drawn.bottom();
        }
    }
    EXPECT_NEAR(f.outline().width() / rest.width(), 1, 0.009);
}

TEST(Contents, OfTheHiddenCreatureAreAChevronUnderThePointer) {
    PictureFixture f;
    f.m.hidden = true;
    f.rest();
    const QRectF inside(-40, 4, 80, 33);
    const auto drawn = [](QColor c) { return c.lightness() > 40; };
    EXPECT_TRUE(f.seen(inside, drawn).isNull());
    f.m.hovering = true;
    f.loop.advance(0.3);
    const QRectF chevron = f.seen(inside, drawn);
    EXPECT_NEAR(chevron.center().x(), 0, 0.6);
    EXPECT_GT(chevron.top(), 32) << "the housing covers it";
    EXPECT_NEAR(chevron.bottom(), 36, 0.6);
}

TEST(Contents, AreGoneAfterTheyHaveFadedOut) {
    PictureFixture f;
    for (const Toy toy : {Toy::weather, Toy::critter}) {
        f.m.withAnimation(commonSpring(), [&] { f.m.toy = toy; });
        f.loop.advance(3);
        EXPECT_EQ(f.seen({-60, 10, 120, 45}, PictureFixture::isLight).isNull(), toy == Toy::weather);
        EXPECT_TRUE(std::isinf(f.root.nextFrame()));
    }
}

// How far it goes and that it comes home is seen on the desktop.
TEST(Sliding, SnapsHomeFromNearAndStartsWhereItIs) {
    const struct {
        double from, way;
        bool hidden;
        double after;
    } cases[] = {{0, 23.9, false, 0}, {0, -24, false, -24}, {280, -256.1, false, 0}, {50, 100, true, 50}};
    for (const auto& c : cases) {
        PictureFixture f;
        f.m.slideX = c.from;
        f.m.hidden = c.hidden;
        const Hit hit = f.root.hit({180, 20});
        const auto& slide = std::get<Hit::Slide>(hit.drag);
        for (const double part : {0.5, 1.0}) slide.move(c.way * part);
        EXPECT_EQ(f.m.sliding, !c.hidden);
        slide.end();
        EXPECT_NEAR(f.m.slideX, c.after, 1e-9) << c.from;
        EXPECT_FALSE(f.m.sliding);
    }
}

TEST(Shadow, BlursAsAGaussianDoes) {
    constexpr int width = 120, height = 3 * 40;
    constexpr double sigma = 8;
    std::vector<uchar> mask(width * height, 0);
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width / 2; ++x) mask[size_t(y * width + x)] = 255;
    blurMask(mask, width, height, sigma);
    for (int x = 36; x < 84; ++x) {
        // The edge lies between pixels 59 and 60.
        const double expected = 127.5 * std::erfc((x + 0.5 - 60) / (sigma * std::sqrt(2.0)));
        EXPECT_NEAR(mask[size_t(height / 2 * width + x)], expected, 6) << x;
    }
}

}  // namespace
