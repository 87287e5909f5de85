#pragma once

#include <array>
#include <functional>
#include <list>
#include <optional>

#include "views/View.h"

/// Short reactions of the face: it blinks regularly, and the model's counters trigger the others. Main thread only.
class Reactions {
 public:
    /// The mouth shuts over what it was given, then gulps it down.
    enum class Swallow { none, closing, gulping };
    struct State {
        bool blinking = false, startled = false, worried = false, glancingDown = false, stretching = false;
        double look = 0;  ///< -1 to the left, 1 to the right
        Swallow swallow = Swallow::none;
        bool fed = false;  ///< something was dropped; the mouth stays shut until that drag is over
    };

    /// `changed` is called after every change of the state, with the curve to show it with.
    Reactions(const ViewContext& context, std::function<void(const std::optional<Animation>&)> changed);

    const State& state() const { return state_; }
    /// Starts the reactions that the model has triggered since the last call. May call `changed`.
    void follow();
    /// Cancels all reactions.
    void stop();

 private:
    using Curve = std::optional<Animation>;
    struct Trigger {
        Published<int> NotchModel::*count;
        void (Reactions::*start)();
    };
    static const std::array<Trigger, 7> kTriggers;

    template <class T>
    void set(T State::*member, T value, const Curve& how = {});
    /// Sets `member` for `seconds`.
    void hold(bool State::*member, double seconds, const Curve& begin = {}, const Curve& end = {});
    /// Any number of calls may be pending.
    void later(double seconds, std::function<void()> call);
    void blink();
    void startle();
    void worry();
    void glanceDown();
    void lookAround();
    void stretch();
    void swallow();

    NotchModel& model_;
    Clock& clock_;
    MainLoop& loop_;
    std::function<void(const Curve&)> changed_;
    State state_;
    std::array<int, 7> seen_{};
    std::list<TimerHandle> pending_;
    TimerHandle blinkTimer_, swallowStep_;
};
