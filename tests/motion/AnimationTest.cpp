#include <gtest/gtest.h>

#include <cmath>
#include <numbers>

#include "motion/Animated.h"
#include "motion/Animation.h"

namespace {

constexpr int kTimes = 20;
Animations group;

/// Displacement at t of x'' + c x' + k x = 0 (unit mass), solved by fourth-order Runge-Kutta.
double integrated(double k, double c, double x, double v, double t) {
    const int steps = 20000;
    const double h = t / steps;
    const auto a = [&](double px, double pv) { return -k * px - c * pv; };
    for (int i = 0; i < steps; ++i) {
        const double v1 = v, a1 = a(x, v);
        const double v2 = v + h / 2 * a1, a2 = a(x + h / 2 * v1, v2);
        const double v3 = v + h / 2 * a2, a3 = a(x + h / 2 * v2, v3);
        const double v4 = v + h * a3, a4 = a(x + h * v3, v4);
        x += h / 6 * (v1 + 2 * v2 + 2 * v3 + v4);
        v += h / 6 * (a1 + 2 * a2 + 2 * a3 + a4);
    }
    return x;
}

TEST(Springs, UnderdampedFollowsItsClosedForm) {
    // The common spring: omega = sqrt(220), zeta = 18 / (2 sqrt(220)).
    const Animation spring = Animation::interpolatingSpring(1, 220, 18, 0);
    const double decay = 9;
    const double swing = std::sqrt(220.0 - 81);
    for (int i = 0; i < kTimes; ++i) {
        const double t = i * 0.05;
        const double envelope = std::exp(-decay * t);
        const auto r = spring.at(t);
        EXPECT_NEAR(r.distance, envelope * (std::cos(swing * t) + decay / swing * std::sin(swing * t)), 1e-12) << t;
        EXPECT_NEAR(r.speed, envelope * std::sin(swing * t) / swing, 1e-12) << t;
    }
}

TEST(Springs, CriticalFollowsItsClosedForm) {
    const Animation spring = Animation::spring(0.5, 1);
    const double w = 4 * std::numbers::pi;
    for (int i = 0; i < kTimes; ++i) {
        const double t = i * 0.04;
        EXPECT_NEAR(spring.at(t).distance, (1 + w * t) * std::exp(-w * t), 1e-12) << t;
        EXPECT_NEAR(spring.at(t).speed, t * std::exp(-w * t), 1e-12) << t;
    }
}

TEST(Springs, OverdampedFollowsItsClosedForm) {
    // Roots of s² + 50 s + 400 are -10 and -40.
    const Animation spring = Animation::interpolatingSpring(1, 400, 50, 0);
    for (int i = 0; i < kTimes; ++i) {
        const double t = i * 0.03;
        EXPECT_NEAR(spring.at(t).distance, (4 * std::exp(-10 * t) - std::exp(-40 * t)) / 3, 1e-12) << t;
        EXPECT_NEAR(spring.at(t).speed, (std::exp(-10 * t) - std::exp(-40 * t)) / 30, 1e-12) << t;
    }
}

TEST(Springs, SolveTheEquationOfMotion) {
    struct Case {
        double k, c;
    };
    for (const auto& [k, c] : std::vector<Case>{{220, 18}, {320, 11}, {400, 40}, {400, 40.0001}, {100, 60}}) {
        const Animation spring = Animation::interpolatingSpring(1, k, c, 0);
        for (const double t : {0.03, 0.2, 0.7}) {
            const auto r = spring.at(t);
            EXPECT_NEAR(3 * r.distance - 20 * r.speed, integrated(k, c, 3, -20, t), 1e-6) << k << " " << c << " " << t;
        }
    }
    // A heavier mass is a softer, less damped spring of unit mass.
    EXPECT_NEAR(Animation::interpolatingSpring(2, 440, 36, 0).at(0.1).distance,
                Animation::interpolatingSpring(1, 220, 18, 0).at(0.1).distance, 1e-12);
    // Response and damping fraction: omega = 2 pi / response.
    EXPECT_NEAR(Animation::spring(0.4, 0.7).at(0.13).distance,
                Animation::interpolatingSpring(1, std::pow(5 * std::numbers::pi, 2), 2 * 0.7 * 5 * std::numbers::pi, 0)
                    .at(0.13)
                    .distance,
                1e-12);
}

TEST(Springs, RatesAreTheDerivatives) {
    for (const Animation& how : {Animation::interpolatingSpring(1, 220, 18), Animation::spring(0.4, 1),
                                 Animation::spring(0.4, 1.5), Animation::easeInOut(1), Animation::easeOut(1)}) {
        for (const double t : {0.05, 0.3, 0.62}) {
            const double h = 1e-6;
            EXPECT_NEAR(how.at(t).distanceRate, (how.at(t + h).distance - how.at(t - h).distance) / (2 * h), 1e-4);
            EXPECT_NEAR(how.at(t).speedRate, (how.at(t + h).speed - how.at(t - h).speed) / (2 * h), 1e-4);
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
    struct Case {
        Animation how;
        double x1, y1, x2, y2;
    };
    const double duration = 0.7;
    for (const Case& c :
         {Case{Animation::easeInOut(duration), 0.42, 0, 0.58, 1}, Case{Animation::easeOut(duration), 0, 0, 0.58, 1}}) {
        for (int i = 1; i < kTimes; ++i) {
            const double s = double(i) / kTimes;
            const auto point = [s](double p1, double p2) {
                return 3 * (1 - s) * (1 - s) * s * p1 + 3 * (1 - s) * s * s * p2 + s * s * s;
            };
            EXPECT_NEAR(1 - c.how.at(point(c.x1, c.x2) * duration).distance, point(c.y1, c.y2), 1e-9) << s;
        }
        EXPECT_EQ(c.how.at(0).distance, 1);
        EXPECT_EQ(c.how.at(duration).distance, 0);
        EXPECT_EQ(c.how.at(duration * 2).distance, 0);
    }
}

TEST(Animated, ReaimedInFlightKeepsPositionAndVelocity) {
    for (const Animation& first : {Animation::interpolatingSpring(1, 220, 18), Animation::easeInOut(0.5)}) {
        for (const Animation& second : {Animation::interpolatingSpring(1, 320, 11), Animation::spring(0.3, 1.2)}) {
            Animated<double> value(group, 10);
            value.aim(200, first, 5);
            const double position = value.at(5.13);
            const double velocity = value.velocity(5.13);
            EXPECT_GT(velocity, 50);
            value.aim(-30, second, 5.13);
            EXPECT_NEAR(value.at(5.13), position, 1e-9);
            EXPECT_NEAR(value.velocity(5.13), velocity, 1e-6);
            EXPECT_NEAR(value.at(5.131), position + velocity * 0.001, 0.1);
            EXPECT_EQ(value.at(30), -30);
        }
    }
}

TEST(Animated, ReaimedAtManyTimesStillFollowsTheEquation) {
    // A spring that is sent to the same place again and again by way of others is one spring from each aim on.
    Animated<QPointF> value(group, QPointF(0, 0));
    const Animation how = Animation::interpolatingSpring(1, 260, 15);
    double now = 0;
    for (int i = 0; i < kTimes; ++i) {
        const QPointF position = value.at(now);
        const QPointF velocity = value.velocity(now);
        const QPointF target(i % 2 ? 100 : -50, i * 3);
        value.aim(target, how, now);
        now += 0.07;
        const double x = integrated(260, 15, position.x() - target.x(), velocity.x(), 0.07) + target.x();
        EXPECT_NEAR(value.at(now).x(), x, 1e-4) << i;
    }
}

TEST(Animated, InitialVelocityIsAShareOfTheWay) {
    Animated<double> value(group, 0);
    value.aim(50, Animation::interpolatingSpring(1, 220, 18, 4), 0);
    EXPECT_NEAR(value.velocity(0), 200, 1e-9);
}

TEST(Animated, APointArrivesOnlyWhenBothItsCoordinatesHave) {
    Animations own;
    Animated<QPointF> value(own, QPointF(0, 0));
    value.aim(QPointF(0, 100), Animation::interpolatingSpring(1, 220, 18), 0);
    Animated<double>(own, 0).aim(1, Animation::easeOut(0.2), 0);
    EXPECT_TRUE(value.moving(0.3) && own.moving(0.3)) << "a group moves as long as the last of it";
    EXPECT_NE(value.at(0.3).y(), 100);
    EXPECT_FALSE(value.moving(3) || own.moving(3));
}

TEST(Animated, DoesNotDependOnHowOftenItIsAsked) {
    Animated<double> often(group, 0);
    Animated<double> once(group, 0);
    often.aim(1, Animation::easeOut(1), 0);
    once.aim(1, Animation::easeOut(1), 0);
    for (double t = 0; t < 0.6; t += 0.001) often.at(t);
    EXPECT_EQ(often.at(0.6), once.at(0.6));
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
