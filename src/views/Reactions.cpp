#include "views/Reactions.h"

#include <utility>

namespace {

// All in seconds.
constexpr double kBlinkEvery = 3.4;
constexpr double kClosing = 0.17;  // until the mouth has shut over something
constexpr double kGulping = 0.24;

}  // namespace

const std::array<Reactions::Trigger, 7> Reactions::kTriggers{{{&NotchModel::glanceCount, &Reactions::blink},
                                                              {&NotchModel::startleCount, &Reactions::startle},
                                                              {&NotchModel::worryCount, &Reactions::worry},
                                                              {&NotchModel::spawnCount, &Reactions::glanceDown},
                                                              {&NotchModel::lookAroundCount, &Reactions::lookAround},
                                                              {&NotchModel::stretchCount, &Reactions::stretch},
                                                              {&NotchModel::swallowCount, &Reactions::swallow}}};

Reactions::Reactions(const ViewContext& context, std::function<void(const Curve&)> changed)
    : model_(context.model), clock_(context.clock), loop_(context.loop), changed_(std::move(changed)) {
    for (size_t i = 0; i < kTriggers.size(); ++i) seen_[i] = model_.*kTriggers[i].count;
    blinkTimer_ = loop_.every(kBlinkEvery, [this] { blink(); });
}

void Reactions::follow() {
    if (!model_.dragNear || model_.dropTargeted) state_.fed = false;
    for (size_t i = 0; i < kTriggers.size(); ++i) {
        const int count = model_.*kTriggers[i].count;
        if (std::exchange(seen_[i], count) != count) (this->*kTriggers[i].start)();
    }
}

void Reactions::stop() {
    blinkTimer_.cancel();
    swallowStep_.cancel();
    pending_.clear();
}

template <class T>
void Reactions::set(T State::*member, T value, const Curve& how) {
    state_.*member = value;
    changed_(how);
}

void Reactions::hold(bool State::*member, double seconds, const Curve& begin, const Curve& end) {
    set(member, true, begin);
    later(seconds, [this, member, end] { set(member, false, end); });
}

void Reactions::later(double seconds, std::function<void()> call) {
    const auto place = pending_.emplace(pending_.end());
    *place = loop_.after(seconds, [this, place, call = std::move(call)] {
        // Keeps the timer alive, which owns this callback.
        const TimerHandle self = std::move(*place);
        pending_.erase(place);
        call();
    });
}

void Reactions::blink() {
    if (!model_.asleep) hold(&State::blinking, 0.12);
}

void Reactions::startle() {
    if (!model_.isQuiet(clock_)) hold(&State::startled, 0.45);
}

void Reactions::worry() {
    hold(&State::worried, 1.4, Animation::easeOut(0.25), Animation::easeInOut(0.5));
}

void Reactions::glanceDown() {
    if (!model_.isQuiet(clock_)) hold(&State::glancingDown, 0.9, Animation::easeOut(0.3), Animation::easeInOut(0.45));
}

void Reactions::lookAround() {
    if (model_.isQuiet(clock_)) return;
    const auto look = [this](double to, double duration) { set(&State::look, to, Animation::easeInOut(duration)); };
    look(-1, 0.22);
    later(0.5, [look] { look(1, 0.3); });
    later(1.05, [look] { look(0, 0.3); });
}

void Reactions::stretch() {
    hold(&State::stretching, 6);
}

void Reactions::swallow() {
    if (model_.isQuiet(clock_)) return;
    state_.fed = model_.dragNear && !model_.dropTargeted;
    set(&State::swallow, Swallow::closing);
    swallowStep_ = loop_.after(kClosing, [this] {
        set(&State::swallow, Swallow::gulping);
        swallowStep_ = loop_.after(kGulping, [this] { set(&State::swallow, Swallow::none); });
    });
}
