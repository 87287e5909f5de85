#pragma once

#include <atomic>

#include "platform/Clock.h"

/// The machine's clocks. Any thread.
class SystemClock : public Clock {
 public:
    Date now() const override;
    double uptime() const override;
    /// Follows a change of the machine's time zone within a minute.
    int localHour(Date date) const override;

 private:
    mutable std::atomic<double> zoneDue_ = 0;  // uptime
};
