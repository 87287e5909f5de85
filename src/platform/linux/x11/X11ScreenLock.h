#pragma once

#include <memory>

#include "platform/ScreenLock.h"
#include "platform/linux/x11/StackingGuard.h"

/// The screen counts as locked while the session says so, or while an unmanaged window covers the panel's whole screen,
/// which is how most X11 lockers work.
class X11ScreenLock : public ScreenLock {
 public:
    /// `guard` must outlive this.
    X11ScreenLock(StackingGuard& guard, std::unique_ptr<ScreenLock> session)
        : guard_(guard), session_(std::move(session)) {
        guard_.onCovered = session_->onChange = [this] {
            if (onChange) onChange();
        };
    }
    ~X11ScreenLock() override { guard_.onCovered = nullptr; }

    bool locked() const override { return guard_.covered() || session_->locked(); }

 private:
    StackingGuard& guard_;
    std::unique_ptr<ScreenLock> session_;
};
