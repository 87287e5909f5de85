#pragma once

#include <variant>

/// How a value moves to its target: by a timing curve with a duration, or by a spring.
///
/// Both are linear in the starting distance and velocity, so a Response describes the movement. A plain value type; any
/// thread.
class Animation {
 public:
    /// A damped spring: `stiffness` per square second and `damping` per second for a `mass` of 1. `initialVelocity` is
    /// the fraction of the distance covered per second at the start, in addition to the value's current velocity.
    static Animation interpolatingSpring(double mass, double stiffness, double damping, double initialVelocity = 0);
    /// A spring with an undamped period of `response` seconds; a `dampingFraction` of 1 is critical.
    static Animation spring(double response, double dampingFraction);
    static Animation easeInOut(double duration);
    static Animation easeOut(double duration);

    /// `t` seconds after a start at distance x0 with speed v0, the distance to the target is
    /// `distance * x0 + speed * v0`; the rates are the time derivatives of the two factors.
    struct Response {
        double distance = 0, speed = 0;
        double distanceRate = 0, speedRate = 0;
    };
    Response at(double t) const;

    /// Seconds after which a value that starts at distance `x0` with speed `v0` (magnitudes) stays within `precision`
    /// of its target.
    double settlingTime(double x0, double v0, double precision) const;

    /// See interpolatingSpring(); 0 for all other kinds.
    double initialVelocity() const;

    friend bool operator==(const Animation&, const Animation&) = default;

 private:
    /// Unit cubic Bézier curve from (0, 0) to (1, 1) with these control points, over `duration` seconds.
    struct Timing {
        double x1, y1, x2, y2, duration;
        friend bool operator==(const Timing&, const Timing&) = default;
    };
    /// x'' + 2 zeta omega x' + omega² x = 0
    struct Spring {
        double omega, zeta, initialVelocity;
        friend bool operator==(const Spring&, const Spring&) = default;
    };

    explicit Animation(Timing timing) : curve_(timing) {}
    explicit Animation(Spring spring) : curve_(spring) {}

    static Response timingAt(const Timing& timing, double t);
    static Response springAt(const Spring& spring, double t);

    std::variant<Timing, Spring> curve_;
};
