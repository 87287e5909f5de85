#pragma once

#include <memory>
#include <utility>

/// A member that ends with its owner, for the owner's callbacks that others may call later than that. Main thread only.
class Lifetime {
 public:
    Lifetime() = default;
    Lifetime(const Lifetime&) = delete;
    Lifetime& operator=(const Lifetime&) = delete;

    /// `callback`, but doing nothing once the owner is gone. May be moved between threads, not called elsewhere.
    template <class Callback>
    auto guard(Callback callback) const {
        return [alive = std::weak_ptr(token_), callback = std::move(callback)](auto&&... arguments) mutable {
            if (!alive.expired()) callback(std::forward<decltype(arguments)>(arguments)...);
        };
    }

 private:
    std::shared_ptr<char> token_ = std::make_shared<char>();
};
