#pragma once

#include <algorithm>
#include <functional>
#include <memory>
#include <vector>

/// Keeps an observer connected while it lives. May outlive the signal.
using Subscription = std::shared_ptr<void>;

/// Calls its observers, in the order in which they subscribed. Main thread only.
template <class... Arguments>
class Signal {
 public:
    using Observer = std::function<void(Arguments...)>;

    [[nodiscard]] Subscription subscribe(Observer observer) {
        auto slot = std::make_shared<Observer>(std::move(observer));
        slots_.push_back(slot);
        return slot;
    }

    /// Whether emit() would call anyone.
    bool hasObservers() const {
        return std::any_of(slots_.begin(), slots_.end(), [](const auto& slot) { return !slot.expired(); });
    }

    /// Observers may subscribe and unsubscribe meanwhile; a new one is first called by the next emit().
    void emit(Arguments... arguments) {
        std::erase_if(slots_, [](const auto& slot) { return slot.expired(); });
        const auto slots = slots_;
        for (const auto& weak : slots) {
            if (const auto slot = weak.lock()) (*slot)(arguments...);
        }
    }

 private:
    std::vector<std::weak_ptr<Observer>> slots_;
};
