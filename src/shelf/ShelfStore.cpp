#include <QDir>

#include "creature/NotchModel.h"
#include "platform/FileReferences.h"
#include "platform/Preferences.h"

namespace {

const QString kShelf = QStringLiteral("glimmet.shelf");
const QString kBites = QStringLiteral("glimmet.bites");
const QString kTimers = QStringLiteral("glimmet.timers");
const QString kHidden = QStringLiteral("glimmet.hidden");

}  // namespace

void NotchModel::loadShelf() {
    const auto stored = preferences_.dataList(kShelf);
    if (!stored) return;
    QList<QUrl> found;
    for (const QByteArray& bookmark : *stored) {
        if (const auto file = files_.resolve(bookmark)) found.append(*file);
    }
    // As if they were given anew, so that a file that somebody has edited keeps to the limits too.
    addItems(found);
}

void NotchModel::loadHeld() {
    if (preferences_.boolean(kHidden)) hidden = true;
    if (const auto json = preferences_.data(kBites)) {
        const auto stored = decodeBites(*json);
        if (stored && *stored != bites.get()) bites = *stored;
    }
    if (const auto json = preferences_.data(kTimers)) {
        auto stored = decodeTimers(*json);
        if (!stored) return;
        stored->removeIf([](const HeldTimer& timer) { return timer.done; });
        if (*stored != timers.get()) timers = *stored;
    }
}

void NotchModel::saveItems() {
    QList<QByteArray> bookmarks;
    for (const QUrl& file : items.get()) {
        if (const auto bookmark = files_.bookmark(file)) bookmarks.append(*bookmark);
    }
    preferences_.setDataList(kShelf, bookmarks);
}

void NotchModel::saveBites() {
    preferences_.setData(kBites, encodeBites(bites));
}

void NotchModel::saveTimers() {
    preferences_.setData(kTimers, encodeTimers(timers));
}

void NotchModel::saveHidden() {
    preferences_.setBoolean(kHidden, hidden);
}

QUrl NotchModel::droppedFolder() const {
    const QString path = dataFolder_ + QStringLiteral("/Glimmet/Dropped");
    QDir().mkpath(path);
    return QUrl::fromLocalFile(path + u'/');
}
