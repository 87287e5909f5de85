#pragma once

#include <functional>

/// Whether the user has locked the screen, or something else that nobody must look past covers it. Main thread only.
class ScreenLock {
 public:
    virtual ~ScreenLock() = default;

    virtual bool locked() const = 0;

    /// Called when locked() has changed.
    std::function<void()> onChange;
};
