#pragma once

#include <memory>
#include <utility>

/// A member that guards its owner's callbacks against being called after the owner is gone. Main thread only.
class Lifetime {
 public:
    Lifetime() = default;
    Lifetime(const Lifetime&) = delete;
    Lifetime& operator=(const Lifetime&) = delete;

    /// `callback`, but it does nothing once the owner is gone. May be moved between threads; call it on the main
    /// thread.
    template <class Callback>
    auto guard(Callback callback) const {
        return [alive = std::weak_ptr(token_), callback = std::move(callback)](auto&&... arguments) mutable {
            if (!alive.expired()) callback(std::forward<decltype(arguments)>(arguments)...);
        };
    }

 private:
    std::shared_ptr<char> token_ = std::make_shared<char>();
};
