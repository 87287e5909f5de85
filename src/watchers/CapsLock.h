#pragma once

#include "creature/NotchModel.h"

/// Tells the model whether Caps Lock is on. Main thread only; the model must outlive it.
class CapsLock {
 public:
    explicit CapsLock(NotchModel& model) : m_(model) {}

    void capsChanged(bool on) {
        if (on != m_.capsOn) m_.withAnimation(Animation::easeOut(0.2), [&] { m_.capsOn = on; });
    }

 private:
    NotchModel& m_;
};
