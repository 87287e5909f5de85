#include <gtest/gtest.h>

#include <cmath>
#include <numbers>

#include "motion/Animated.h"
#include "motion/Animation.h"

namespace {

Animations group;

// x'' + c x' + k x = 0 for a unit mass, with differences over h seconds for the rates.
TEST(Springs, SolveTheEquationOfMotion) {
    const double pi = std::numbers::pi, h = 1e-4;
    const struct {
        Animation spring;
        double k, c;  // of unit mass
    } cases[] = {{Animation::interpolatingSpring(1, 220, 18, 0), 220, 18},
                 {Animation::interpolatingSpring(1, 400, 40, 0), 400, 40},
                 {Animation::interpolatingSpring(1, 400, 40.0001, 0), 400, 40.0001},
                 {Animation::interpolatingSpring(1, 100, 60, 0), 100, 60},
                 {Animation::interpolatingSpring(2, 440, 36, 0), 220, 18},
                 // Response and damping fraction: omega = 2 pi / response.
                 {Animation::spring(0.4, 0.7), 25 * pi * pi, 7 * pi},
                 {Animation::spring(0.5, 1), 16 * pi * pi, 8 * pi}};
    for (const auto& [spring, k, c] : cases) {
        const auto x = [&](double t) { return 3 * spring.at(t).distance - 20 * spring.at(t).speed; };
        EXPECT_NEAR(x(0), 3, 1e-9);
        EXPECT_NEAR((4 * x(h) - x(2 * h) - 3 * x(0)) / (2 * h), -20, 0.01);
        for (const double t : {0.03, 0.2, 0.7}) {
            const double speed = (x(t + h) - x(t - h)) / (2 * h), change = (x(t + h) - 2 * x(t) + x(t - h)) / (h * h);
            EXPECT_NEAR(change + c * speed + k * x(t), 0, 0.02) << k << " " << c << " " << t;
        }
    }
}

TEST(Springs, StayWithinPrecisionAfterTheyHaveSettled) {
    for (const Animation& how : {Animation::interpolatingSpring(1, 220, 18), Animation::interpolatingSpring(1, 320, 11),
                                 Animation::spring(0.4, 1), Animation::spring(0.4, 1.6)}) {
        const double end = how.settlingTime(100, 500, 0.01);
        EXPECT_LT(end, 5);
        for (double t = end; t < end + 2; t += 0.003) {
            EXPECT_LE(std::abs(100 * how.at(t).distance + 500 * how.at(t).speed), 0.01 + 1e-9);
        }
    }
}

TEST(Easing, FollowsItsBezierCurve) {
    const double duration = 0.7;
    const struct {
        Animation how;
        double x1, x2;  // of the control points at 0 and 1
    } cases[] = {{Animation::easeInOut(duration), 0.42, 0.58}, {Animation::easeOut(duration), 0, 0.58}};
    for (const auto& [how, x1, x2] : cases) {
        for (double s = 0.05; s < 1; s += 0.05) {
            const double x = 3 * (1 - s) * (1 - s) * s * x1 + 3 * (1 - s) * s * s * x2 + s * s * s;
            EXPECT_NEAR(1 - how.at(x * duration).distance, s * s * (3 - 2 * s), 1e-9) << s;
        }
        EXPECT_EQ(how.at(0).distance, 1);
        EXPECT_EQ(how.at(duration).distance, 0);
        EXPECT_EQ(how.at(duration * 2).distance, 0);
    }
}

TEST(Animated, ReaimedInFlightKeepsPositionAndVelocity) {
    for (const Animation& first : {Animation::interpolatingSpring(1, 220, 18), Animation::spring(0.4, 1),
                                   Animation::spring(0.6, 1.5), Animation::easeInOut(0.5), Animation::easeOut(0.5)}) {
        for (const Animation& second :
             {Animation::interpolatingSpring(1, 320, 11), Animation::spring(0.3, 1.2), Animation::spring(0.4, 1)}) {
            Animated<double> value(group, 10);
            value.aim(200, first, 5);
            const double position = value.at(5.13), before = value.at(5.13 - 1e-6), velocity = value.velocity(5.13);
            EXPECT_GT(velocity, 50);
            EXPECT_NEAR(velocity, (position - before) / 1e-6, 0.5);
            value.aim(-30, second, 5.13);
            EXPECT_NEAR(value.at(5.13), position, 1e-9);
            EXPECT_NEAR(value.velocity(5.13), velocity, 1e-6);
            EXPECT_NEAR(value.at(5.13 + 1e-6), position + velocity * 1e-6, 1e-5);
            EXPECT_NEAR(value.velocity(5.2), (value.at(5.2 + 1e-6) - value.at(5.2)) / 1e-6, 0.5);
            EXPECT_EQ(value.at(30), -30);
        }
    }
}

TEST(Animated, AGroupMovesAsLongAsTheLastOfIt) {
    Animations own;
    Animated<QPointF> value(own, QPointF(0, 0));
    value.aim(QPointF(0, 50), Animation::interpolatingSpring(1, 220, 18, 4), 0);
    EXPECT_NEAR(value.velocity(0).y(), 200, 1e-9) << "the initial velocity is a share of the way";
    Animated<double> other(own, 0);
    other.aim(1, Animation::easeOut(0.2), 0);
    EXPECT_TRUE(value.moving(0.3) && own.moving(0.3)) << "it has arrived only when both coordinates have";
    EXPECT_NE(value.at(0.3).y(), 50);
    EXPECT_FALSE(value.moving(3) || own.moving(3));
}

TEST(Animated, AimingAtThePresentTargetChangesNothing) {
    Animated<double> value(group, 0);
    value.aim(100, Animation::easeOut(1), 0);
    const double later = value.at(0.5);
    value.aim(100, std::nullopt, 0.2);
    value.aim(100, Animation::easeInOut(9), 0.3);
    EXPECT_EQ(value.at(0.5), later);
    EXPECT_FALSE(value.moving(1.01));
    value.jump(100);
    EXPECT_FALSE(value.moving(0.5));
    value.aim(7, std::nullopt, 0.5);
    EXPECT_EQ(value.at(0.5), 7);
}

}  // namespace
