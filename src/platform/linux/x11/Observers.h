#pragma once

#include <algorithm>
#include <cstddef>
#include <functional>
#include <memory>
#include <vector>

/// Keeps an observer; dropping it ends the observation. May outlive what is observed.
using Observation = std::shared_ptr<void>;

/// Functions to call when something happens. While they are called, observers may come and go.
template <class... Arguments>
class Observers {
 public:
    [[nodiscard]] Observation add(std::function<void(Arguments...)> observer) {
        auto kept = std::make_shared<std::function<void(Arguments...)>>(std::move(observer));
        observers_.push_back(kept);
        return kept;
    }

    /// Calls all observers; false when there are none.
    bool notify(Arguments... arguments) {
        std::erase_if(observers_, [](const auto& observer) { return observer.expired(); });
        const std::size_t count = observers_.size();
        for (std::size_t i = 0; i < count; ++i) {
            if (const auto observer = observers_[i].lock()) (*observer)(arguments...);
        }
        return count > 0;
    }

 private:
    std::vector<std::weak_ptr<std::function<void(Arguments...)>>> observers_;
};
