#pragma once

#include <functional>

#include "platform/MainLoop.h"

/// Remembers for a moment that the pointer was over something, so that what appears on hovering can be reached.
class HoverHold {
 public:
    /// `ended` is called when the moment is over.
    HoverHold(MainLoop& loop, std::function<void()> ended) : loop_(loop), ended_(std::move(ended)) {}

    bool alive() const { return alive_; }

    void hover(bool over) {
        work_.cancel();
        if (over) {
            alive_ = true;
            return;
        }
        work_ = loop_.after(kMoment, [this] {
            alive_ = false;
            ended_();
        });
    }

 private:
    static constexpr double kMoment = 0.45;  // seconds

    MainLoop& loop_;
    std::function<void()> ended_;
    bool alive_ = false;
    TimerHandle work_;
};
