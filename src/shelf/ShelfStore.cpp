#include "creature/NotchModel.h"
#include "platform/FileReferences.h"
#include "platform/Preferences.h"

namespace {

const QString kShelf = QStringLiteral("glimmet.shelf");
const QString kBites = QStringLiteral("glimmet.bites");
const QString kTimers = QStringLiteral("glimmet.timers");
const QString kHidden = QStringLiteral("glimmet.hidden");

}  // namespace

// Things are added as if they were given anew, so that preferences that somebody has edited keep to the limits too.
void NotchModel::loadShelf() {
    const auto stored = shelf_.preferences.dataList(kShelf);
    if (!stored) return;
    QList<QUrl> found;
    for (const QByteArray& bookmark : *stored) {
        if (const auto file = shelf_.files.resolve(bookmark)) found.append(*file);
    }
    addItems(found);
}

void NotchModel::loadHeld() {
    if (shelf_.preferences.boolean(kHidden)) hidden = true;
    if (const auto json = shelf_.preferences.data(kBites)) {
        if (const auto stored = decodeBites(*json)) addBites(*stored);
    }
    if (const auto json = shelf_.preferences.data(kTimers)) {
        auto stored = decodeTimers(*json);
        if (!stored) return;
        stored->removeIf([](const HeldTimer& timer) { return timer.done; });
        if (*stored != timers.get()) timers = *stored;
    }
}

void NotchModel::saveItems() {
    QList<QByteArray> bookmarks;
    for (const QUrl& file : items.get()) {
        if (const auto bookmark = shelf_.files.bookmark(file)) bookmarks.append(*bookmark);
    }
    shelf_.preferences.setDataList(kShelf, bookmarks);
}

void NotchModel::saveBites() {
    shelf_.preferences.setData(kBites, encodeBites(bites));
}

void NotchModel::saveTimers() {
    shelf_.preferences.setData(kTimers, encodeTimers(timers));
}

void NotchModel::saveHidden() {
    shelf_.preferences.setBoolean(kHidden, hidden);
}

QUrl NotchModel::droppedFolder() const {
    return QUrl::fromLocalFile(shelf_.dataFolder + QStringLiteral("/Glimmet/Dropped/"));
}
