#include "shelf/Shelf.h"

#include <QDir>
#include <algorithm>
#include <cmath>
#include <limits>

#include "platform/Pasteboard.h"
#include "platform/Preferences.h"
#include "shelf/HeldJson.h"
#include "shelf/HeldLists.h"
#include "shelf/NoteText.h"

namespace {

const QString kShelf = QStringLiteral("glimmet.shelf");
const QString kBites = QStringLiteral("glimmet.bites");
const QString kTimers = QStringLiteral("glimmet.timers");
const QString kHidden = QStringLiteral("glimmet.hidden");

// Far more than anybody needs; each takes a place on the shelf and time in every tick.
constexpr qsizetype kMaxStoredTimers = 200;
// Characters; far more than a drop can give. A single oversized bite must not make the whole list unstorable.
constexpr qsizetype kMaxBite = 64 * 1024;

/// Holds `stored` as older than what is held already, which came in while the disk was slow.
template <class T, class Key>
void holdStored(Published<QList<T>>& held, const QList<T>& stored, int max, const Key& keyOf) {
    const QList<T> all = joined(stored, held.get(), max, keyOf);
    if (!all.isEmpty()) held = all;
}

/// Adds what is not held yet. Returns the number of new elements, `max` at most.
template <class T, class Key>
int holdNew(Published<QList<T>>& held, const QList<T>& offered, int max, const Key& keyOf) {
    int fresh = 0;
    const QList<T> all = joined(held.get(), offered, max, keyOf, &fresh);
    if (fresh > 0) held = all;
    return std::min(fresh, max);
}

/// Writes `held` without the elements that `isUnwanted` accepts.
template <class T, class Test>
void removeIf(Published<QList<T>>& held, const Test& isUnwanted) {
    QList<T> rest = held;
    rest.removeIf(isUnwanted);
    held = rest;
}

}  // namespace

Shelf::Shelf(NotchModel& model, const ShelfPorts& ports)
    : model_(model),
      ports_(ports),
      references_(ports.files),
      chewer_(ports.worker),
      chewJobs_(model, ports.loop, ports.jobs),
      saves_{model.items.didSet.subscribe([this] { saveItems(); }),
             model.bites.didSet.subscribe([this] { saveBites(); }),
             model.timers.didSet.subscribe([this] { saveTimers(); }),
             model.hidden.didSet.subscribe([this] { saveHidden(); })} {}

// The limits for new items apply to stored ones too, since the preferences may have been edited by hand.
void Shelf::loadShelf() {
    references_.load(ports_.preferences.dataList(kShelf).value_or(QList<QByteArray>()),
                     [this](const QList<QUrl>& found) { holdStored(model_.items, found, kMaxItems, standardized); });
}

void Shelf::loadHeld() {
    if (ports_.preferences.boolean(kHidden)) model_.hidden = true;
    const auto json = ports_.preferences.data(kBites);
    holdStored(model_.bites, decodeBites(json.value_or(QByteArray())).value_or(QList<Bite>()), kMaxBites, biteKey);
    loadTimers();
}

void Shelf::loadTimers() {
    const auto json = ports_.preferences.data(kTimers);
    QList<HeldTimer> all = decodeTimers(json.value_or(QByteArray())).value_or(QList<HeldTimer>());
    all.removeIf([](const HeldTimer& timer) { return timer.done; });
    surplusTimers_ = all.mid(kMaxStoredTimers);
    all = all.first(all.size() - surplusTimers_.size()) + model_.timers;
    if (!all.isEmpty()) model_.timers = all;
}

void Shelf::saveItems() {
    storeReferences();
    references_.refresh(model_.items, [this] { storeReferences(); });
}

void Shelf::storeReferences() {
    if (ports_.preferences.isRead()) ports_.preferences.setDataList(kShelf, references_.stored(model_.items));
}

void Shelf::saveBites() {
    if (!ports_.preferences.isRead()) return;
    QList<Bite> storable = model_.bites;
    storable.removeIf([](const Bite& bite) { return biteKey(bite).size() > kMaxBite; });
    ports_.preferences.setData(kBites, encodeBites(storable));
}

void Shelf::saveTimers() {
    if (!ports_.preferences.isRead()) return;
    ports_.preferences.setData(kTimers, encodeTimers(model_.timers.get() + surplusTimers_));
}

void Shelf::saveHidden() {
    ports_.preferences.setBoolean(kHidden, model_.hidden);
}

void Shelf::replaceItems(const QList<QUrl>& files) {
    references_.cancelLoad();
    model_.items = files;
}

int Shelf::addItems(const QList<QUrl>& files) {
    return holdNew(model_.items, files, kMaxItems, standardized);
}

int Shelf::addBites(const QList<Bite>& bites) {
    return holdNew(model_.bites, bites, kMaxBites, biteKey);
}

void Shelf::addTimer(double length) {
    const double whole = std::clamp(std::round(length), 1.0, double(std::numeric_limits<int>::max()));
    QList<HeldTimer> all = model_.timers;
    all.append({QUuid::createUuid(), ports_.clock.now() + length * 60, int(whole), false});
    model_.timers = all;
    ++model_.swallowCount;
    model_.markActivity(ports_.clock.uptime());
}

void Shelf::removeItem(const QUrl& file) {
    QList<QUrl> rest = model_.items;
    if (rest.removeOne(file)) model_.items = rest;
}

void Shelf::removeBite(const Bite& bite) {
    removeIf(model_.bites, [key = biteKey(bite)](const Bite& held) { return biteKey(held) == key; });
}

void Shelf::removeTimer(const HeldTimer& timer) {
    removeIf(model_.timers, [&timer](const HeldTimer& held) { return held.id == timer.id; });
}

void Shelf::clearDoneTimers() {
    removeIf(model_.timers, [](const HeldTimer& timer) { return timer.done; });
}

bool Shelf::tickTimers() {
    bool rang = false;
    const qsizetype count = model_.timers->size();
    for (qsizetype i = 0; i < count; ++i) {
        if (model_.timers->at(i).done || model_.timers->at(i).fireAt > ports_.clock.now()) continue;
        QList<HeldTimer> all = model_.timers;
        all[i].done = true;
        model_.timers = all;
        rang = true;
    }
    return rang;
}

void Shelf::copy(const QString& text) {
    ports_.pasteboard.setString(text);
    ++model_.boopCount;
    model_.markActivity(ports_.clock.uptime());
}

void Shelf::chew(const QUrl& file, Chewer::Mode mode) {
    chewJobs_.start([this, chewer = chewer_, file, mode, folder = droppedFolder()]() mutable -> ChewJobs::Outcome {
        QDir().mkpath(folder.toLocalFile());
        return [this, result = chewer.chew(file, mode, folder)] {
            const QUrl* made = std::get_if<QUrl>(&result);
            if (!made) return false;
            addItems({*made});
            ++model_.swallowCount;
            return true;
        };
    });
}

void Shelf::readText(const QUrl& file) {
    chewJobs_.start([this, chewer = chewer_, file]() mutable -> ChewJobs::Outcome {
        return [this, result = chewer.readText(file)] {
            const QString* text = std::get_if<QString>(&result);
            if (!text) return false;
            addBites({Bite::note(firstCharacters(*text))});
            copy(*text);
            return true;
        };
    });
}

QUrl Shelf::droppedFolder() const {
    return QUrl::fromLocalFile(ports_.dataFolder + QStringLiteral("/Glimmet/Dropped/"));
}
