#include "creature/NotchModel.h"

#include <algorithm>

bool NotchModel::isSleepy(const Clock& clock) const {
    if (battery < 0.2 && !charging) return true;
    const int hour = clock.localHour(clock.now());
    return hour == 23 || hour < 6;
}

bool NotchModel::timerRung() const {
    const auto done = [](const HeldTimer& timer) { return timer.done; };
    return !screenLocked && std::any_of(timers->begin(), timers->end(), done);
}

double NotchModel::shapeWidth() const {
    const double resting = std::max(kDefaultNotchWidth, notchSize.width());
    if (hidden) return notchSize.width();
    if (toy == Toy::weather) return attending() ? 300 : resting;
    if (dropTargeted || dragNear) return 300;
    if (hovering && hasHeld()) return 320;
    if (hovering && musicPlaying) return 300;
    if (hasHeld()) return 236;
    if (attending()) return 214;
    return resting;
}

double NotchModel::shapeHeight() const {
    if (hidden) return notchSize.height() + 5;
    if (toy == Toy::weather) return attending() ? 94 : 40;
    if (dropTargeted || dragNear) return 120;
    if (hovering && hasHeld()) {
        const double folded = musicPlaying ? 178 : 152;
        return shelfExpanded ? folded + 20 + kChipRow * (chipRows() - 1) : folded;
    }
    if (hovering && musicPlaying) return 138;
    if (yawning) return 92;
    if (hasHeld()) return 74;
    if (attending()) return 108;
    return 58;
}

void NotchModel::markActivity(double now) {
    lastActivity = now;
    if (asleep) withAnimation(Animation::easeOut(0.4), [this] { asleep = false; });
}
