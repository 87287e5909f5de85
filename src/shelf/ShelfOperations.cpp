#include <QSet>
#include <algorithm>
#include <cmath>
#include <limits>

#include "creature/NotchModel.h"

namespace {

constexpr int kMostItems = 12;
constexpr int kMostBites = 8;

/// Two URLs of one file are equal in this form: "." and ".." and doubled slashes are resolved.
QString standardized(const QUrl& file) {
    return QString::fromUtf8(file.adjusted(QUrl::NormalizePathSegments | QUrl::StripTrailingSlash).toEncoded());
}

/// Appends to `held` what has a new key, pushing out the oldest beyond `most`. Returns how many were new, `most` at
/// most.
template <class T, class Key>
int holdNew(Published<QList<T>>& held, const QList<T>& offered, int most, const Key& keyOf) {
    QSet<QString> known;
    for (const T& one : held.get()) known.insert(keyOf(one));
    QList<T> all = held;
    int fresh = 0;
    for (const T& one : offered) {
        const QString key = keyOf(one);
        if (known.contains(key)) continue;
        known.insert(key);
        all.append(one);
        ++fresh;
    }
    if (fresh == 0) return 0;
    if (all.size() > most) all.remove(0, all.size() - most);
    held = all;
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
