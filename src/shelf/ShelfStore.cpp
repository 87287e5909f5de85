#include "creature/NotchModel.h"
#include "platform/Preferences.h"
#include "shelf/HeldLists.h"

namespace {

const QString kShelf = QStringLiteral("glimmet.shelf");
const QString kBites = QStringLiteral("glimmet.bites");
const QString kTimers = QStringLiteral("glimmet.timers");
const QString kHidden = QStringLiteral("glimmet.hidden");

// Nobody counts down so many things, and each takes a place on the shelf and a part of every tick.
constexpr qsizetype kMostStoredTimers = 200;
// Characters. Far beyond what a drop may give: one thing that is too large must not cost the others their place.
constexpr qsizetype kLongestBite = 64 * 1024;

/// Holds `stored` as older than what is held already: that came while a disk kept us waiting.
template <class T, class Key>
void holdStored(Published<QList<T>>& held, const QList<T>& stored, int most, const Key& keyOf) {
    const QList<T> all = joined(stored, held.get(), most, keyOf);
    if (!all.isEmpty()) held = all;
}

}  // namespace

// Things are held as if they were given anew, so that preferences that somebody has edited keep to the limits too.
void NotchModel::loadShelf() {
    references_.load(shelf_.preferences.dataList(kShelf).value_or(QList<QByteArray>()),
                     [this](const QList<QUrl>& found) { holdStored(items, found, kMostItems, standardized); });
}

void NotchModel::loadHeld() {
    if (shelf_.preferences.boolean(kHidden)) hidden = true;
    const auto json = shelf_.preferences.data(kBites);
    holdStored(bites, decodeBites(json.value_or(QByteArray())).value_or(QList<Bite>()), kMostBites, biteKey);
    loadTimers();
}

void NotchModel::loadTimers() {
    const auto json = shelf_.preferences.data(kTimers);
    QList<HeldTimer> all = decodeTimers(json.value_or(QByteArray())).value_or(QList<HeldTimer>());
    all.removeIf([](const HeldTimer& timer) { return timer.done; });
    surplusTimers_ = all.mid(kMostStoredTimers);
    all = all.first(all.size() - surplusTimers_.size()) + timers;
    if (!all.isEmpty()) timers = all;
}

void NotchModel::replaceItems(const QList<QUrl>& files) {
    references_.dropLoad();
    items = files;
}

void NotchModel::saveItems() {
    storeReferences();
    references_.refresh(items, [this] { storeReferences(); });
}

void NotchModel::storeReferences() {
    if (shelf_.preferences.isRead()) shelf_.preferences.setDataList(kShelf, references_.stored(items));
}

void NotchModel::saveBites() {
    if (!shelf_.preferences.isRead()) return;
    QList<Bite> storable = bites;
    storable.removeIf([](const Bite& bite) { return biteKey(bite).size() > kLongestBite; });
    shelf_.preferences.setData(kBites, encodeBites(storable));
}

void NotchModel::saveTimers() {
    if (shelf_.preferences.isRead()) shelf_.preferences.setData(kTimers, encodeTimers(timers.get() + surplusTimers_));
}

void NotchModel::saveHidden() {
    shelf_.preferences.setBoolean(kHidden, hidden);
}

QUrl NotchModel::droppedFolder() const {
    return QUrl::fromLocalFile(shelf_.dataFolder + QStringLiteral("/Glimmet/Dropped/"));
}
