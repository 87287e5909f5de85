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
    f.loop.advance(0.267);
    EXPECT_GT(f.outline().width() - flares, 215.5) << "it overshoots before it rests";
    EXPECT_LE(f.root.nextFrame(), f.clock.uptime());
    f.loop.advance(2);
    EXPECT_EQ(f.outline().size(), QSizeF(214 + flares, 108));
    EXPECT_TRUE(std::isinf(f.root.nextFrame()));
}

TEST(Body, BreathesInWallTimeAndHoldsItsBreathWhileAttending) {
    BodyFixture f;
    for (const auto& [phase, scale] : {std::pair(0.0, 1.0), {0.25, 0.996}, {0.5, 0.992}}) {
        f.clock.setNow({3.4 * (1000 + phase) - 0.25});
        f.loop.advance(0.25);
        EXPECT_NEAR(f.outline().height() / 58, scale, 1e-3) << phase;
    }
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

TEST(Contents, AreGoneAfterTheyHaveFadedOut) {
    PictureFixture f;
    for (const Toy toy : {Toy::weather, Toy::critter}) {
        f.m.withAnimation(commonSpring(), [&] { f.m.toy = toy; });
        f.loop.advance(3);
        EXPECT_EQ(f.seen({-60, 10, 120, 45}, PictureFixture::isLight).isNull(), toy == Toy::weather);
        EXPECT_TRUE(std::isinf(f.root.nextFrame()));
    }
}

// How far it goes, and that a hidden one stays, is seen on the desktop.
TEST(Sliding, SnapsHomeFromNearAndStartsWhereItIs) {
    PictureFixture f;
    for (const auto& [from, way, after] : {std::tuple(0, 23.9, 0), {0, -24.0, -24}, {280, -256.1, 0}}) {
        f.m.slideX = from;
        const Hit hit = f.root.hit({180, 20});
        const auto& slide = std::get<Hit::Slide>(hit.drag);
        for (const double part : {0.5, 1.0}) slide.move(way * part);
        EXPECT_TRUE(f.m.sliding);
        slide.end();
        EXPECT_NEAR(f.m.slideX, after, 1e-9) << from;
        EXPECT_FALSE(f.m.sliding);
    }
}

}  // namespace
