#include "motion/Animation.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace {

// Closer than this to critical damping, the other two closed forms lose digits to cancellation.
constexpr double kCritical = 1e-6;

double bezier(double p1, double p2, double s) {
    return ((1 + 3 * p1 - 3 * p2) * s + (3 * p2 - 6 * p1)) * s * s + 3 * p1 * s;
}

double bezierRate(double p1, double p2, double s) {
    return (3 * (1 + 3 * p1 - 3 * p2) * s + 2 * (3 * p2 - 6 * p1)) * s + 3 * p1;
}

/// The curve parameter at which the (rising) x component is `x`.
double parameterAt(double x1, double x2, double x) {
    double low = 0;
    double high = 1;
    double s = x;
    for (int i = 0; i < 60; ++i) {
        const double error = bezier(x1, x2, s) - x;
        if (std::abs(error) < 1e-12) break;
        (error > 0 ? high : low) = s;
        const double rate = bezierRate(x1, x2, s);
        const double newton = s - error / rate;
        s = rate > 1e-9 && newton > low && newton < high ? newton : (low + high) / 2;
    }
    return s;
}

}  // namespace

Animation Animation::interpolatingSpring(double mass, double stiffness, double damping, double initialVelocity) {
    return Animation(Spring{std::sqrt(stiffness / mass), damping / (2 * std::sqrt(stiffness * mass)), initialVelocity});
}

Animation Animation::spring(double response, double dampingFraction) {
    return Animation(Spring{2 * std::numbers::pi / response, dampingFraction, 0});
}

Animation Animation::easeInOut(double duration) {
    return Animation(Timing{0.42, 0, 0.58, 1, duration});
}

Animation Animation::easeOut(double duration) {
    return Animation(Timing{0, 0, 0.58, 1, duration});
}

Animation::Response Animation::at(double t) const {
    t = std::max(t, 0.0);
    if (const auto* timing = std::get_if<Timing>(&curve_)) return timingAt(*timing, t);
    return springAt(std::get<Spring>(curve_), t);
}

Animation::Response Animation::timingAt(const Timing& timing, double t) {
    if (t >= timing.duration) return {};
    const double s = parameterAt(timing.x1, timing.x2, t / timing.duration);
    const double slope = bezierRate(timing.y1, timing.y2, s) / std::max(bezierRate(timing.x1, timing.x2, s), 1e-9);
    return {.distance = 1 - bezier(timing.y1, timing.y2, s), .distanceRate = -slope / timing.duration};
}

Animation::Response Animation::springAt(const Spring& spring, double t) {
    const auto [w, z, unused] = spring;
    if (std::abs(z - 1) < kCritical) {
        const double e = std::exp(-w * t);
        return {(1 + w * t) * e, t * e, -w * w * t * e, (1 - w * t) * e};
    }
    if (z < 1) {
        const double wd = w * std::sqrt(1 - z * z);
        const double e = std::exp(-z * w * t);
        const double c = std::cos(wd * t);
        const double s = std::sin(wd * t);
        return {e * (c + z * w / wd * s), e * s / wd, -e * w * w / wd * s, e * (c - z * w / wd * s)};
    }
    const double root = w * std::sqrt(z * z - 1);
    const double slow = -z * w + root;
    const double fast = -z * w - root;
    const double es = std::exp(slow * t);
    const double ef = std::exp(fast * t);
    return {(slow * ef - fast * es) / (slow - fast), (es - ef) / (slow - fast), slow * fast * (ef - es) / (slow - fast),
            (slow * es - fast * ef) / (slow - fast)};
}

double Animation::settlingTime(double x0, double v0, double precision) const {
    if (const auto* timing = std::get_if<Timing>(&curve_)) return timing->duration;
    const auto [w, z, unused] = std::get<Spring>(curve_);
    // Each form is bounded by amplitude * exp(-rate * t), the critical one with an amplitude that grows with time.
    if (std::abs(z - 1) < kCritical) {
        const double drift = v0 + w * x0;
        double t = 1 / w;
        while ((x0 + drift * t) * std::exp(-w * t) > precision) t += 0.1 / w;
        return t;
    }
    double amplitude = 0;
    double rate = 0;
    if (z < 1) {
        amplitude = std::hypot(x0, (v0 + z * w * x0) / (w * std::sqrt(1 - z * z)));
        rate = z * w;
    } else {
        const double root = w * std::sqrt(z * z - 1);
        amplitude = x0 + (v0 + (z * w + root) * x0) / root;
        rate = z * w - root;
    }
    return amplitude <= precision ? 0 : std::log(amplitude / precision) / rate;
}

double Animation::initialVelocity() const {
    const auto* spring = std::get_if<Spring>(&curve_);
    return spring ? spring->initialVelocity : 0;
}
