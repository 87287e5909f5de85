#pragma once

#include <variant>

/// How a value travels from where it is to where it is sent: a timing curve with a duration, or a spring.
///
/// Both are linear in where the value starts and how fast it moves there, so a journey is described by its Response.
/// A plain value: copy it freely, any thread.
class Animation {
 public:
    /// A damped spring: `mass` 1 is the unit, `stiffness` per square second, `damping` per second. `initialVelocity` is
    /// the fraction of the way covered per second at the start, on top of what speed the value has already.
    static Animation interpolatingSpring(double mass, double stiffness, double damping, double initialVelocity = 0);
    /// A spring that, undamped, would swing once in `response` seconds; a `dampingFraction` of 1 is critical.
    static Animation spring(double response, double dampingFraction);
    static Animation easeInOut(double duration);
    static Animation easeOut(double duration);

    /// What is left of the way, and of the starting speed, `t` seconds after the start: the distance to the target is
    /// `distance * x0 + speed * v0`, for a start at distance x0 with speed v0; the rates are its derivatives in time.
    struct Response {
        double distance = 0, speed = 0;
        double distanceRate = 0, speedRate = 0;
    };
    Response at(double t) const;

    /// Seconds after which a value that starts `x0` from its target at speed `v0` (magnitudes) stays within
    /// `precision`.
    double settlingTime(double x0, double v0, double precision) const;

    /// See interpolatingSpring; 0 for every other kind.
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
