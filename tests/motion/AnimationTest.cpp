#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <complex>
#include <numbers>

#include "motion/Animation.h"

namespace {

constexpr int kTimes = 20;

struct SpringCase {
    const char* name;
    Animation animation;
    double mass, stiffness, damping;
    double seconds;  // how long it is watched
};

SpringCase fractional(const char* name, double response, double fraction, double seconds) {
    const double omega = 2 * std::numbers::pi / response;
    return {name, Animation::spring(response, fraction), 1, omega * omega, 2 * fraction * omega, seconds};
}

SpringCase physical(const char* name, double mass, double stiffness, double damping, double seconds) {
    return {
        name, Animation::interpolatingSpring(mass, stiffness, damping), mass, stiffness, damping, seconds,
    };
}

std::vector<SpringCase> springs() {
    return {
        physical("common", 1, 220, 18, 1),
        physical("heavy", 2.5, 220, 18, 2),
        physical("hardly damped", 1, 300, 1, 3),
        physical("undamped", 1, 100, 0, 2),
        physical("critical", 1, 100, 20, 1),
        physical("critical and heavy", 4, 100, 40, 2),
        physical("over-damped", 1, 100, 40, 2),
        physical("far over-damped", 1, 100, 400, 20),
        physical("nearly critical from below", 1, 100, 20 * (1 - 3e-6), 1),
        physical("nearly critical from above", 1, 100, 20 * (1 + 3e-6), 1),
        fractional("quick", 0.32, 0.8, 1),
        fractional("springy", 0.4, 0.3, 2),
        fractional("smooth", 0.5, 1, 1.5),
        fractional("dull", 0.4, 1.7, 2),
    };
}

struct State {
    double x, v;
};

/// The solution of m x'' + c x' + k x = 0 by the roots of its characteristic polynomial, which may be complex.
State solved(const SpringCase& c, State start, double t) {
    const std::complex<double> discriminant = c.damping * c.damping - 4 * c.mass * c.stiffness;
    if (std::abs(discriminant) < 1e-9) {
        const double w = c.damping / (2 * c.mass);
        const double drift = start.v + w * start.x;
        return {(start.x + drift * t) * std::exp(-w * t), (drift - w * (start.x + drift * t)) * std::exp(-w * t)};
    }
    const auto root = std::sqrt(discriminant);
    const auto l1 = (-c.damping + root) / (2 * c.mass);
    const auto l2 = (-c.damping - root) / (2 * c.mass);
    const auto a = (start.v - l2 * start.x) / (l1 - l2);
    const auto b = start.x - a;
    return {(a * std::exp(l1 * t) + b * std::exp(l2 * t)).real(),
            (a * l1 * std::exp(l1 * t) + b * l2 * std::exp(l2 * t)).real()};
}

/// The same by classical Runge-Kutta steps, which know no damping regimes.
State integrated(const SpringCase& c, State s, double t) {
    const auto slope = [&c](State at) { return State{at.v, -(c.damping * at.v + c.stiffness * at.x) / c.mass}; };
    const auto moved = [](State from, State by, double h) { return State{from.x + by.x * h, from.v + by.v * h}; };
    const int steps = std::max(1, int(std::ceil(t / 2e-4)));
    const double h = t / steps;
    for (int i = 0; i < steps; ++i) {
        const State k1 = slope(s);
        const State k2 = slope(moved(s, k1, h / 2));
        const State k3 = slope(moved(s, k2, h / 2));
        const State k4 = slope(moved(s, k3, h));
        s = {s.x + h / 6 * (k1.x + 2 * k2.x + 2 * k3.x + k4.x), s.v + h / 6 * (k1.v + 2 * k2.v + 2 * k3.v + k4.v)};
    }
    return s;
}

State answered(const Animation& animation, State start, double t) {
    const auto r = animation.at(t);
    return {start.x * r.distance + start.v * r.speed, start.x * r.distanceRate + start.v * r.speedRate};
}

TEST(Animation, SpringsSolveTheirEquation) {
    const State start{-120, 900};
    for (const SpringCase& c : springs()) {
        for (int i = 0; i <= kTimes; ++i) {
            const double t = c.seconds * i / kTimes;
            const State got = answered(c.animation, start, t);
            const State exact = solved(c, start, t);
            const State numeric = integrated(c, start, t);
            EXPECT_NEAR(got.x, exact.x, 1e-5) << c.name << " at " << t;
            EXPECT_NEAR(got.v, exact.v, 1e-3) << c.name << " at " << t;
            EXPECT_NEAR(got.x, numeric.x, 1e-4) << c.name << " at " << t;
            EXPECT_NEAR(got.v, numeric.v, 1e-2) << c.name << " at " << t;
        }
    }
}

TEST(Animation, SettlesWithinItsPrecisionAndWithoutWaste) {
    constexpr double precision = 0.005;
    for (const SpringCase& c : springs()) {
        if (c.damping == 0) continue;  // never settles
        for (const State start : {State{300, 0}, State{0, 4000}, State{-40, -900}, State{40, -900}}) {
            const double end = c.animation.settlingTime(std::abs(start.x), std::abs(start.v), precision);
            double last = 0;  // when it is last further away than the precision
            for (double t = 0; t < end * 1.5; t += 1e-3) {
                if (std::abs(solved(c, start, t).x) > precision) last = t;
            }
            EXPECT_LE(last, end) << c.name << " from " << start.x << ", " << start.v;
            EXPECT_LE(end, 1.6 * last + 0.1) << c.name << " from " << start.x << ", " << start.v;
        }
    }
}

/// A point of a cubic Bézier curve by repeated halfway division at `s`, and its direction there.
std::pair<State, State> deCasteljau(std::array<State, 4> p, double s) {
    const auto mix = [s](State a, State b) { return State{a.x + (b.x - a.x) * s, a.v + (b.v - a.v) * s}; };
    const State ab = mix(p[0], p[1]);
    const State bc = mix(p[1], p[2]);
    const State cd = mix(p[2], p[3]);
    const State abc = mix(ab, bc);
    const State bcd = mix(bc, cd);
    return {mix(abc, bcd), {3 * (bcd.x - abc.x), 3 * (bcd.v - abc.v)}};
}

TEST(Animation, TimingCurvesFollowTheirBezier) {
    const struct {
        const char* name;
        Animation animation;
        double duration;
        std::array<State, 4> points;  // time and progress
    } curves[] = {
        {"ease in and out", Animation::easeInOut(0.4), 0.4, {{{0, 0}, {0.42, 0}, {0.58, 1}, {1, 1}}}},
        {"long", Animation::easeInOut(12), 12, {{{0, 0}, {0.42, 0}, {0.58, 1}, {1, 1}}}},
        {"ease out", Animation::easeOut(0.2), 0.2, {{{0, 0}, {0, 0}, {0.58, 1}, {1, 1}}}},
    };
    for (const auto& c : curves) {
        for (int i = 1; i < kTimes; ++i) {
            const auto [point, direction] = deCasteljau(c.points, double(i) / kTimes);
            const auto r = c.animation.at(point.x * c.duration);
            EXPECT_NEAR(r.distance, 1 - point.v, 1e-9) << c.name << ' ' << i;
            EXPECT_NEAR(r.distanceRate, -direction.v / direction.x / c.duration, 1e-5) << c.name << ' ' << i;
            EXPECT_EQ(r.speed, 0) << "a timing curve forgets the speed before it";
        }
        EXPECT_NEAR(c.animation.at(0).distance, 1, 1e-12) << c.name;
        EXPECT_EQ(c.animation.at(c.duration).distance, 0) << c.name;
        EXPECT_EQ(c.animation.at(c.duration * 2).distanceRate, 0) << c.name;
        EXPECT_EQ(c.animation.settlingTime(100, 100, 0.01), c.duration) << c.name;
    }
}

}  // namespace
