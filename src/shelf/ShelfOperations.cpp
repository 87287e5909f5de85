#include <algorithm>
#include <cmath>
#include <limits>

#include "creature/NotchModel.h"
#include "shelf/HeldLists.h"

namespace {

/// Holds what is not held yet. Returns how many were new, `most` at most.
template <class T, class Key>
int holdNew(Published<QList<T>>& held, const QList<T>& offered, int most, const Key& keyOf) {
    int fresh = 0;
    const QList<T> all = joined(held.get(), offered, most, keyOf, &fresh);
    if (fresh > 0) held = all;
    return std::min(fresh, most);
}

/// Writes `held` without the elements that `unwanted` accepts.
template <class T, class Test>
void removeIf(Published<QList<T>>& held, const Test& unwanted) {
    QList<T> kept = held;
    kept.removeIf(unwanted);
    held = kept;
}

}  // namespace

int NotchModel::addItems(const QList<QUrl>& files) {
    return holdNew(items, files, kMostItems, standardized);
}

int NotchModel::addBites(const QList<Bite>& newBites) {
    return holdNew(bites, newBites, kMostBites, biteKey);
}

void NotchModel::addTimer(double length) {
    const double whole = std::clamp(std::round(length), 1.0, double(std::numeric_limits<int>::max()));
    QList<HeldTimer> all = timers;
    all.append({QUuid::createUuid(), clock_.now() + length * 60, int(whole), false});
    timers = all;
    ++swallowCount;
    markActivity();
}

bool NotchModel::tickTimers() {
    bool rang = false;
    const qsizetype count = timers->size();
    for (qsizetype i = 0; i < count; ++i) {
        if (timers->at(i).done || timers->at(i).fireAt > clock_.now()) continue;
        QList<HeldTimer> all = timers;
        all[i].done = true;
        timers = all;
        rang = true;
    }
    return rang;
}

void NotchModel::removeItem(const QUrl& file) {
    const qsizetype place = items->indexOf(file);
    if (place < 0) return;
    QList<QUrl> kept = items;
    kept.removeAt(place);
    items = kept;
}

void NotchModel::removeBite(const Bite& bite) {
    removeIf(bites, [key = biteKey(bite)](const Bite& held) { return biteKey(held) == key; });
}

void NotchModel::removeTimer(const HeldTimer& timer) {
    removeIf(timers, [&timer](const HeldTimer& held) { return held.id == timer.id; });
}

void NotchModel::clearDoneTimers() {
    removeIf(timers, [](const HeldTimer& timer) { return timer.done; });
}
