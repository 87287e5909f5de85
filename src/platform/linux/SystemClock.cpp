#include "platform/linux/SystemClock.h"

#include <cmath>
#include <ctime>

namespace {

constexpr double kZoneRefreshInterval = 60;  // seconds

double read(clockid_t clock) {
    timespec time{};
    clock_gettime(clock, &time);
    return double(time.tv_sec) + double(time.tv_nsec) * 1e-9;
}

}  // namespace

Date SystemClock::now() const {
    timespec time{};
    clock_gettime(CLOCK_REALTIME, &time);
    // Subtracting the reference first leaves more digits for the fraction.
    return {double(time.tv_sec) - Date::kReference + double(time.tv_nsec) * 1e-9};
}

double SystemClock::uptime() const {
    // Includes suspended time: after a night's sleep the user was away, not working.
    return read(CLOCK_BOOTTIME);
}

int SystemClock::localHour(Date date) const {
    const auto seconds = time_t(std::floor(date.seconds + Date::kReference));
    tm local{};
    // localtime_r() alone would keep the initial time zone; tzset() accesses the disk, so call it rarely.
    if (const double up = uptime(); up >= zoneDue_) {
        zoneDue_ = up + kZoneRefreshInterval;
        tzset();
    }
    localtime_r(&seconds, &local);
    return local.tm_hour;
}
