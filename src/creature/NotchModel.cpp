#include "creature/NotchModel.h"

#include <algorithm>

NotchModel::NotchModel(Clock& clock, MainLoop& loop, const ShelfPorts& shelf)
    : lastActivity(clock.uptime()),
      clock_(clock),
      loop_(loop),
      shelf_(shelf),
      references_(shelf.files),
      chewer_(shelf_.worker),
      self_(std::make_shared<NotchModel*>(this)) {}

bool NotchModel::isSleepy() const {
    if (battery < 0.2 && !charging) return true;
    const int hour = clock_.localHour(clock_.now());
    return hour == 23 || hour < 6;
}

bool NotchModel::timerRung() const {
    const auto done = [](const HeldTimer& timer) { return timer.done; };
    return !screenLocked && std::any_of(timers->begin(), timers->end(), done);
}

bool NotchModel::quiet() const {
    return clock_.now() < quietUntil;
}

double NotchModel::shapeWidth() const {
    const double resting = std::max(185.0, notchSize.width());
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

void NotchModel::markActivity() {
    lastActivity = clock_.uptime();
    if (asleep) withAnimation(Animation::easeOut(0.4), [this] { asleep = false; });
}

void NotchModel::yawn() {
    if (yawning || asleep || toy == Toy::weather || attending() || quiet()) return;
    withAnimation(Animation::easeInOut(0.7), [this] { yawning = true; });
    yawnEnd_ = loop_.after(1.6, [this] { withAnimation(Animation::easeInOut(0.5), [this] { yawning = false; }); });
}

void NotchModel::notchTapped() {
    if (hidden) {
        withAnimation(commonSpring(), [this] { hidden = false; });
        ++boopCount;
    } else if (timerRung()) {
        clearDoneTimers();
        ++boopCount;
    } else if (needsYou && blockedTerminal && !blockedTerminal->isEmpty()) {
        if (onFocusBlockedTerminal) onFocusBlockedTerminal();
    } else {
        ++boopCount;
    }
    markActivity();
}

void NotchModel::pickToy(Toy choice) {
    withAnimation(commonSpring(), [&] {
        toy = choice;
        dragOffset = QSizeF(0, 0);
        dragging = false;
        asleep = false;
    });
}
