#include "shelf/ItemReferences.h"

#include <algorithm>
#include <utility>

#include "platform/FileReferences.h"

namespace {

// Far more than are ever held. We do not write a longer list; of such a one, the end is the newest.
constexpr qsizetype kMaxStored = 64;

}  // namespace

struct ItemReferences::Loading {
    QList<QByteArray> references;
    QList<std::optional<QUrl>> found;
    qsizetype unanswered = 0;
    std::function<void(const QList<QUrl>&)> done;
};

ItemReferences::ItemReferences(FileReferences& files) : files_(files) {}

ItemReferences::~ItemReferences() = default;

void ItemReferences::load(const QList<QByteArray>& references, std::function<void(const QList<QUrl>&)> done) {
    const QList<QByteArray> last = references.last(std::min(references.size(), kMaxStored));
    const auto loading =
        std::make_shared<Loading>(Loading{last, QList<std::optional<QUrl>>(last.size()), last.size(), std::move(done)});
    loading_ = loading;
    const auto finish = [this, loading] {
        loading_.reset();
        QList<QUrl> files;
        for (qsizetype i = 0; i < loading->found.size(); ++i) {
            if (!loading->found[i]) continue;
            files.append(*loading->found[i]);
            known_[files.last()].reference = loading->references[i];
        }
        loading->done(files);
    };
    if (last.isEmpty()) return finish();
    for (qsizetype i = 0; i < last.size(); ++i) {
        files_.resolve(last[i], lifetime_.guard([this, loading, i, finish](const std::optional<QUrl>& file) {
            if (loading != loading_) return;
            loading->found[i] = file;
            if (--loading->unanswered == 0) finish();
        }));
    }
}

void ItemReferences::cancelLoad() {
    loading_.reset();
}

QList<QByteArray> ItemReferences::stored(const QList<QUrl>& items) const {
    QList<QByteArray> references = loading_ ? loading_->references : QList<QByteArray>();
    for (const QUrl& file : items) {
        const QByteArray good = known_.value(file).reference;
        const auto reference = good.isEmpty() ? files_.plain(file) : std::optional(good);
        if (reference) references.append(*reference);
    }
    return references;
}

void ItemReferences::refresh(const QList<QUrl>& items, std::function<void()> changed) {
    known_.removeIf([&](const auto& entry) { return !items.contains(entry.key()); });
    for (const QUrl& file : items) {
        if (std::exchange(known_[file].asked, true)) continue;
        files_.bookmark(file, lifetime_.guard([this, file, changed](const std::optional<QByteArray>& reference) {
            if (!known_.contains(file)) return;
            Known& known = known_[file];
            known.asked = false;
            // Keep the last good reference to a file that is gone: it may only have been renamed.
            if (!reference || *reference == known.reference) return;
            known.reference = *reference;
            changed();
        }));
    }
}
