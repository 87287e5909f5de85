#pragma once

#include <functional>
#include <list>

#include "platform/MainLoop.h"

/// Calls that come later, any number at a time, each at its own moment; dropped together with the object.
class DelayedCalls {
 public:
    explicit DelayedCalls(MainLoop& loop) : loop_(loop) {}

    void after(double seconds, std::function<void()> call) {
        const auto place = handles_.emplace(handles_.end());
        *place = loop_.after(seconds, [this, place, call = std::move(call)] {
            // Kept until the call has returned, since it may be this timer's own closure that runs.
            const TimerHandle self = std::move(*place);
            const auto run = call;
            handles_.erase(place);
            run();
        });
    }

    void cancel() { handles_.clear(); }

 private:
    MainLoop& loop_;
    std::list<TimerHandle> handles_;
};
