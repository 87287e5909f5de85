#include <gtest/gtest.h>

#include "motion/Animated.h"

namespace {

const Animation kSpring = Animation::interpolatingSpring(1, 220, 18);

TEST(Animated, KeepsPlaceAndSpeedWhenAimedAnewInFlight) {
    const Animation springs[] = {kSpring, Animation::spring(0.5, 1), Animation::spring(0.4, 1.7)};
    for (const Animation& first : springs) {
        for (const Animation& second : springs) {
            for (const double turn : {10.01, 10.1, 10.3}) {
                Animated<double> value(0);
                value.aim(100, first, 10);
                const double place = value.at(turn);
                const double speed = value.velocity(turn);
                ASSERT_NE(speed, 0);
                value.aim(-50, second, turn);
                EXPECT_NEAR(value.at(turn), place, 1e-9);
                EXPECT_NEAR(value.velocity(turn), speed, 1e-9);
                constexpr double h = 1e-6;
                EXPECT_NEAR((value.at(turn + h) - place) / h, speed, 0.2) << "the place must move at that speed";
                EXPECT_DOUBLE_EQ(value.at(turn + 30), -50);
            }
        }
    }
}

TEST(Animated, AddsTheCurvesOwnSpeedToWhatItHas) {
    Animated<double> value(10);
    value.aim(60, Animation::interpolatingSpring(1, 220, 18, 3), 0);
    EXPECT_NEAR(value.velocity(0), 150, 1e-9) << "three times the way per second";
    const double speed = value.velocity(0.05);
    const double place = value.at(0.05);
    value.aim(0, Animation::interpolatingSpring(1, 220, 18, 3), 0.05);
    EXPECT_NEAR(value.velocity(0.05), speed - 3 * place, 1e-9);
}

TEST(Animated, PointsMoveInBothDirectionsAtOnce) {
    Animated<QPointF> point(QPointF(0, 100));
    Animated<double> x(0);
    Animated<double> y(100);
    const auto aim = [&](double toX, double toY, double now) {
        point.aim({toX, toY}, kSpring, now);
        x.aim(toX, kSpring, now);
        y.aim(toY, kSpring, now);
    };
    aim(40, -20, 0);
    aim(-10, 7, 0.12);
    for (double t = 0.12; t < 0.6; t += 0.02) {
        EXPECT_NEAR(point.at(t).x(), x.at(t), 1e-12);
        EXPECT_NEAR(point.at(t).y(), y.at(t), 1e-12);
    }
    EXPECT_NEAR(point.velocity(0.12).x(), x.velocity(0.12), 1e-12);
}

TEST(Animated, RestsExactlyAtItsTargetOnceItHasArrived) {
    for (const double precision : {0.5, 0.005}) {
        Animated<double> value(0, precision);
        value.aim(100, kSpring, 0);
        double end = 0;
        while (value.moving(end) && end < 10) end += 1e-5;
        EXPECT_GT(end, 0.3);
        EXPECT_LT(end, 2);
        EXPECT_NEAR(value.at(end - 2e-5), 100, precision * 1.01) << "no visible jump at the end";
        EXPECT_EQ(value.at(end), 100);
        EXPECT_EQ(value.velocity(end), 0);
    }
}

TEST(Animated, IsNotDisturbedByItsPresentTargetAndJumpsWithoutACurve) {
    Animated<double> value(0);
    value.aim(100, kSpring, 0);
    const double later = value.at(0.2);
    value.aim(100, Animation::easeOut(9), 0.1);
    value.aim(100, std::nullopt, 0.15);
    EXPECT_EQ(value.at(0.2), later) << "its way goes on as it was";

    value.aim(20, std::nullopt, 0.2);
    EXPECT_EQ(value.at(0.2), 20);
    EXPECT_FALSE(value.moving(0.2));

    value.aim(100, kSpring, 1);
    value.jump(100);
    EXPECT_FALSE(value.moving(1));
    EXPECT_EQ(value.at(1), 100);
}

}  // namespace
