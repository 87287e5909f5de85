#pragma once

#include <algorithm>
#include <cmath>
#include <deque>
#include <limits>
#include <memory>
#include <mutex>
#include <vector>

#include "platform/Clock.h"
#include "platform/MainLoop.h"

/// Time that the test moves by hand. It starts at noon of a winter day.
class ManualClock : public Clock {
 public:
    Date now() const override { return now_; }
    double uptime() const override { return uptime_; }
    int localHour(Date date) const override { return int(std::fmod(date.seconds, 86400) / 3600); }

    void setNow(Date date) { now_ = date; }
    void step(double seconds) {
        now_ = now_ + seconds;
        uptime_ += seconds;
    }

 private:
    Date now_{86400.0 * 7000 + 12 * 3600};
    double uptime_ = 1000;
};

/// A main loop that runs when the test advances its clock.
class ManualLoop : public MainLoop {
 public:
    explicit ManualLoop(ManualClock& clock) : clock_(clock) {}

    void post(Callback callback) override {
        const std::lock_guard lock(mutex_);
        posted_.push_back(std::move(callback));
    }
    TimerHandle after(double seconds, Callback callback) override {
        return start(seconds, kNever, std::move(callback));
    }
    TimerHandle every(double seconds, Callback callback) override {
        return start(seconds, seconds, std::move(callback));
    }

    /// Runs what was posted, and what that posts.
    void drain() {
        for (auto batch = takePosted(); !batch.empty(); batch = takePosted())
            for (auto& callback : batch) callback();
    }

    /// Lets `seconds` pass; timers fire in the order of their times, each at its own moment.
    void advance(double seconds) {
        drain();
        const double end = clock_.uptime() + seconds;
        while (auto next = earliest(end)) {
            clock_.step(std::max(next->due - clock_.uptime(), 0.0));
            next->due += next->period;
            next->callback();
            drain();
        }
        clock_.step(end - clock_.uptime());
    }

    /// How many timers are still to fire.
    int pending() const {
        return int(std::count_if(timers_.begin(), timers_.end(), [](const auto& weak) {
            const auto timer = weak.lock();
            return timer && timer->due < kNever;
        }));
    }

 private:
    struct Timer {
        double due, period;
        Callback callback;
    };
    static constexpr double kNever = std::numeric_limits<double>::infinity();

    std::deque<Callback> takePosted() {
        const std::lock_guard lock(mutex_);
        return std::exchange(posted_, {});
    }

    TimerHandle start(double seconds, double period, Callback callback) {
        auto timer = std::make_shared<Timer>(Timer{clock_.uptime() + seconds, period, std::move(callback)});
        timers_.push_back(timer);
        return TimerHandle(timer);
    }

    std::shared_ptr<Timer> earliest(double end) {
        std::erase_if(timers_, [](const auto& timer) { return timer.expired(); });
        std::shared_ptr<Timer> best;
        for (const auto& weak : timers_) {
            const auto timer = weak.lock();
            // A hair of slack: periods such as 0.1 add up to a little more than the end.
            if (timer->due <= end + 1e-9 && (!best || timer->due < best->due)) best = timer;
        }
        return best;
    }

    ManualClock& clock_;
    std::mutex mutex_;
    std::deque<Callback> posted_;
    std::vector<std::weak_ptr<Timer>> timers_;
};
