#pragma once

#include "platform/Clock.h"

/// The machine's clocks. Any thread.
class SystemClock : public Clock {
 public:
    Date now() const override;
    double uptime() const override;
    int localHour(Date date) const override;
};
