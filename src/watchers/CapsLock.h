#pragma once

#include "creature/NotchModel.h"

/// Tells the model whether Caps Lock is on. Main thread only; the model must outlive it.
class CapsLock {
 public:
    explicit CapsLock(NotchModel& model) : model_(model) {}

    void capsChanged(bool on) {
        if (on != model_.capsOn) model_.withAnimation(Animation::easeOut(0.2), [&] { model_.capsOn = on; });
    }

 private:
    NotchModel& model_;
};
