#include <gtest/gtest.h>

#include "support/Creature.h"
#include "views/Picture.h"
#include "views/RootView.h"

namespace {

TEST(Body, HasTheModelsSizeAndOpensWithASpring) {
    PictureFixture f;
    f.rest();
    EXPECT_NEAR(f.body().width(), 185, 1);
    EXPECT_NEAR(f.body().bottom(), 58, 1);

    f.m.withAnimation(commonSpring(), [&] { f.m.hovering = true; });
    EXPECT_NEAR(f.body().width(), 185, 1.5);
    f.loop.advance(0.1);
    const double opening = f.body().width();
    EXPECT_GT(opening, 188);
    EXPECT_LT(opening, 213);
    // This spring is underdamped: it overshoots by exp(-pi zeta / sqrt(1 - zeta²)), 9 % of the way, before it rests.
    f.loop.advance(0.167);
    EXPECT_GT(f.body().width(), 214.5);
    f.loop.advance(2);
    EXPECT_NEAR(f.body().width(), 214, 1);
    EXPECT_NEAR(f.body().bottom(), 108, 1);
    EXPECT_TRUE(std::isinf(f.root.nextFrame()));
}

TEST(Body, BreathesInWallTimeAndHoldsItsBreathWhileAttending) {
    PictureFixture f;
    const double period = 3.4;
    const auto scaleAt = [&](double phase) {
        f.clock.setNow({period * 1000 + phase * period - 0.25});
        f.loop.advance(0.25);
        return f.root.outline().boundingRect().height() / 58;
    };
    EXPECT_NEAR(scaleAt(0), 1, 1e-4);
    EXPECT_NEAR(scaleAt(0.5), 0.992, 1e-4);
    EXPECT_NEAR(scaleAt(0.25), 0.996, 1e-3);
    scaleAt(0.5);
    f.m.hovering = true;
    EXPECT_EQ(f.root.outline().boundingRect().height(), 108);
}

TEST(Body, BoopSquashesAndWobblesBackEachTime) {
    PictureFixture f;
    f.rest();
    const QSizeF rest = f.root.outline().boundingRect().size();
    const auto squash = [&] {
        const QSizeF now = f.root.outline().boundingRect().size();
        return QPointF(now.width() / rest.width(), now.height() / rest.height());
    };
    ++f.m.boopCount;
    EXPECT_NEAR(squash().x(), 1.18, 1e-3);
    EXPECT_NEAR(squash().y(), 0.74, 1e-3);
    f.loop.advance(0.12);
    EXPECT_LT(squash().x(), 1.1);
    ++f.m.boopCount;
    EXPECT_NEAR(squash().x(), 1.18, 1e-3);
    f.loop.advance(3);
    EXPECT_NEAR(squash().x(), 1, 0.009);

    // Neither the widest nor the tallest is cut off where the picture ends.
    f.m.diskFull = f.m.hovering = true;
    f.shelf.addTimer(5);
    f.rest();
    EXPECT_NEAR(f.root.outline().boundingRect().width(), (320 + 2 * 9) * 1.045, 1);
    const double depth = f.root.depth();
    for (++f.m.boopCount; f.root.nextFrame() <= f.clock.uptime(); f.loop.advance(1 / 60.0)) {
        DisplayList list;
        f.root.compose(list);
        const QRect drawn = list.covered().boundingRect();
        EXPECT_TRUE(drawn.left() >= -RootView::kOverdraw && drawn.bottom() <= depth) << drawn.left() << drawn.bottom();
    }
}

TEST(Hidden, ShowsAChevronOnlyUnderThePointer) {
    PictureFixture f;
    f.m.hidden = true;
    f.rest();
    EXPECT_NEAR(f.body().bottom(), 37, 1);
    const QRectF inside(-40, 4, 80, 33);
    const auto notBlack = [](QColor c) { return c.lightness() > 40; };
    EXPECT_FALSE(f.bounds(f.picture(), inside, notBlack));
    f.m.hovering = true;
    f.loop.advance(0.3);
    const auto chevron = f.bounds(f.picture(), inside, notBlack);
    ASSERT_TRUE(chevron);
    EXPECT_NEAR(chevron->center().x(), 0, 0.6);
    EXPECT_GT(chevron->top(), 32) << "the housing covers it";
    EXPECT_NEAR(chevron->bottom(), 36, 0.6);
}

TEST(Confetti, TenSparksFlyApartAndFade) {
    PictureFixture f;
    f.rest();
    const auto widthAfter = [&](double seconds) {
        f.loop.advance(seconds);
        const auto sparks = f.bounds(f.picture(), {-170, 0, 340, 120},
                                     [](QColor c) { return c.saturation() > 90 && c.lightness() > 60; });
        return sparks.value_or(QRectF()).width();
    };
    EXPECT_EQ(widthAfter(0), 0);
    ++f.m.boopCount;
    const double early = widthAfter(0.02);
    EXPECT_GT(early, 0);
    EXPECT_GT(widthAfter(0.1), early + 5);
    EXPECT_EQ(widthAfter(0.7), 0);
}

TEST(Sliding, FollowsThePullWithinLimitsAndSnapsHome) {
    PictureFixture f;
    f.root.slide(400);
    EXPECT_TRUE(f.m.sliding);
    EXPECT_EQ(f.m.slideX, 280.0);
    f.root.slideEnded();
    EXPECT_EQ(f.m.slideX, 280.0);
    EXPECT_FALSE(f.m.sliding);
    f.root.slide(-256.1);  // from 280
    f.root.slideEnded();
    EXPECT_EQ(f.m.slideX, 0.0);
    f.root.slide(-24);
    f.root.slideEnded();
    f.m.hidden = true;
    f.root.slide(100);
    EXPECT_FALSE(f.m.sliding);
    EXPECT_EQ(f.m.slideX, -24.0);
}

TEST(Frames, OnlyWhatChangedIsPaintedAgain) {
    PictureFixture f;
    f.rest();
    DisplayList before, same, moved;
    f.root.compose(before);
    f.root.compose(same);
    EXPECT_TRUE(before.changesTo(same).isEmpty());

    f.m.cursor = f.m.cursor.get() + QPointF(300, 0);
    f.root.compose(moved);
    const QRect eyes = before.changesTo(moved).boundingRect();
    EXPECT_FALSE(eyes.isEmpty());
    EXPECT_LE(eyes.width(), 56);
    EXPECT_LE(eyes.height(), 24);
    EXPECT_TRUE(std::isinf(f.root.nextFrame()));

    f.m.lookAroundCount = f.m.lookAroundCount + 1;
    EXPECT_FALSE(std::isinf(f.root.nextFrame()));
}

TEST(Frames, TheFaceIsGoneAfterItHasFadedOut) {
    PictureFixture f;
    for (const Toy toy : {Toy::weather, Toy::critter}) {
        f.m.pickToy(toy);
        f.loop.advance(3);
        const bool eyes = f.bounds(f.picture(), {-60, 10, 120, 45}, PictureFixture::isLight).has_value();
        EXPECT_EQ(eyes, toy == Toy::critter);
    }
}

TEST(Shadow, BlursAsAGaussianDoes) {
    constexpr int width = 120;
    constexpr int height = 3 * 40;
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
