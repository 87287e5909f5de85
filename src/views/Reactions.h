#pragma once

#include <array>
#include <functional>
#include <list>
#include <optional>

#include "views/View.h"

/// What happens to the face for a short while: it blinks by a clock of its own, and the model's counters start the
/// rest. Main thread only.
class Reactions {
 public:
    /// It shuts its mouth over what it was given, and then gulps it down.
    enum class Swallow { none, closing, gulping };
    struct State {
        bool blinking = false, startled = false, worried = false, glancingDown = false, stretching = false;
        double look = 0;  ///< -1 to the left, 1 to the right
        Swallow swallow = Swallow::none;
        bool fed = false;  ///< the mouth stays shut until the drag that brought something is over
    };

    /// `changed` is called after every change of the state, with the curve in which it shows.
    Reactions(const ViewContext& context, std::function<void(const std::optional<Animation>&)> changed);

    const State& state() const { return state_; }
    /// Starts what the model has asked for since the last call. `changed` may be called meanwhile.
    void follow();
    /// Ends all of it.
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
    /// Sets `member` for so many seconds.
    void hold(bool State::*member, double seconds, const Curve& begin = {}, const Curve& end = {});
    /// Any number of such calls may be under way.
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
