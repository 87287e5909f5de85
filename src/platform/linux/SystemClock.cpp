#include "platform/linux/SystemClock.h"

#include <cmath>
#include <ctime>

namespace {

constexpr double kZonePatience = 60;  // seconds

double read(clockid_t clock) {
    timespec time{};
    clock_gettime(clock, &time);
    return double(time.tv_sec) + double(time.tv_nsec) * 1e-9;
}

}  // namespace

Date SystemClock::now() const {
    timespec time{};
    clock_gettime(CLOCK_REALTIME, &time);
    // The reference goes first, which leaves more digits for the fraction.
    return {double(time.tv_sec) - Date::kReference + double(time.tv_nsec) * 1e-9};
}

double SystemClock::uptime() const {
    // Who comes back to a machine that slept for a night was away, and has not worked through it.
    return read(CLOCK_BOOTTIME);
}

int SystemClock::localHour(Date date) const {
    const auto seconds = time_t(std::floor(date.seconds + Date::kReference));
    tm local{};
    // localtime_r alone would keep to the time zone at the start, and tzset looks at the disk.
    if (const double up = uptime(); up >= zoneDue_) {
        zoneDue_ = up + kZonePatience;
        tzset();
    }
    localtime_r(&seconds, &local);
    return local.tm_hour;
}
