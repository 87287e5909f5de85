#pragma once

#include <compare>
#include <limits>

/// A point in wall time, in seconds since 2001-01-01 00:00:00 UTC, as in stored timers.
struct Date {
    /// The reference in seconds since 1970-01-01 00:00:00 UTC.
    static constexpr double kReference = 978307200;

    double seconds = 0;

    /// Earlier than any other date.
    static constexpr Date distantPast() { return {-std::numeric_limits<double>::infinity()}; }

    friend constexpr auto operator<=>(Date, Date) = default;  // NOLINT(modernize-use-nullptr): a false positive
    /// Seconds from `b` to `a`.
    friend constexpr double operator-(Date a, Date b) { return a.seconds - b.seconds; }
    friend constexpr Date operator+(Date a, double seconds) { return {a.seconds + seconds}; }
};

/// Tells the time. Any thread.
class Clock {
 public:
    virtual ~Clock() = default;

    /// Wall time; may jump when the user or the network sets it.
    virtual Date now() const = 0;
    /// Seconds since an arbitrary start, including time spent suspended; never jumps back. For animations and
    /// durations.
    virtual double uptime() const = 0;
    /// The local hour at `date`, 0 to 23, in the current time zone.
    virtual int localHour(Date date) const = 0;
};
