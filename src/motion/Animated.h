#pragma once

#include <QPointF>
#include <cmath>
#include <optional>

#include "motion/Animation.h"
#include "motion/Animations.h"

/// A value that moves to a target with an Animation. Where it is at a given time depends only on how it was aimed,
/// never on how often it was sampled. Times are Clock::uptime() seconds.
///
/// T is double or QPointF. Main thread only.
template <class T>
class Animated {
 public:
    /// Belongs to `group` and starts at rest at `value`. Within `precision` of its target, in the value's own unit, it
    /// counts as arrived.
    Animated(Animations& group, T value, double precision = 0.005)
        : group_(&group), target_(value), precision_(precision) {}

    /// Moves the value to `target` with `how`, from its position and velocity at `now`; without `how`, at once. Aiming
    /// at the current target changes nothing, so a view may aim all its values after every change of the model.
    void aim(const T& target, const std::optional<Animation>& how, double now) {
        if (target == target_) return;
        if (!how) {
            target_ = target;
            moving_.reset();
            return;
        }
        const T from = at(now);
        const T speed = velocity(now) + (target - from) * how->initialVelocity();
        target_ = target;
        const T distance = from - target;
        moving_ = Moving{*how, distance, speed, now,
                         now + how->settlingTime(magnitude(distance), magnitude(speed), precision_)};
        group_->started(moving_->end);
    }

    /// Sets the value at once, even if `value` is already the target of a movement.
    void jump(const T& value) {
        target_ = value;
        moving_.reset();
    }

    T at(double now) const {
        if (!moving(now)) return target_;
        const auto r = moving_->how.at(now - moving_->start);
        return target_ + moving_->distance * r.distance + moving_->speed * r.speed;
    }

    /// Change per second.
    T velocity(double now) const {
        if (!moving(now)) return T{};
        const auto r = moving_->how.at(now - moving_->start);
        return moving_->distance * r.distanceRate + moving_->speed * r.speedRate;
    }

    bool moving(double now) const { return moving_ && now < moving_->end; }
    const T& target() const { return target_; }

 private:
    struct Moving {
        Animation how;
        T distance;  // from the target, at the start
        T speed;
        double start, end;
    };

    static double magnitude(double value) { return std::abs(value); }
    static double magnitude(const QPointF& value) { return std::hypot(value.x(), value.y()); }

    Animations* group_;
    T target_;
    double precision_;
    std::optional<Moving> moving_;
};
