#pragma once

#include <functional>

/// Whether the screen is locked, or covered by something like a lock screen. Main thread only.
class ScreenLock {
 public:
    virtual ~ScreenLock() = default;

    virtual bool locked() const = 0;

    /// Called when locked() has changed.
    std::function<void()> onChange;
};
