#pragma once

#include <compare>
#include <limits>

/// A moment of wall time, in seconds since 2001-01-01 00:00:00 UTC, the reference that stored timers use too.
struct Date {
    /// The reference in seconds since 1970-01-01 00:00:00 UTC.
    static constexpr double kReference = 978307200;

    double seconds = 0;

    /// Earlier than every other moment.
    static constexpr Date distantPast() { return {-std::numeric_limits<double>::infinity()}; }

    friend constexpr auto operator<=>(Date, Date) = default;  // NOLINT(modernize-use-nullptr): not ours
    /// Seconds from `b` to `a`.
    friend constexpr double operator-(Date a, Date b) { return a.seconds - b.seconds; }
    friend constexpr Date operator+(Date a, double seconds) { return {a.seconds + seconds}; }
};

/// Tells the time. Main thread and queues alike.
class Clock {
 public:
    virtual ~Clock() = default;

    /// Wall time; may jump when the user or the network sets it.
    virtual Date now() const = 0;
    /// Seconds since an arbitrary start, those that the machine was suspended for included; never jumps back. Motion is
    /// timed and durations are measured by it.
    virtual double uptime() const = 0;
    /// Hour of the user's local calendar at `date`, 0 to 23, in the time zone of the moment of asking.
    virtual int localHour(Date date) const = 0;
};
