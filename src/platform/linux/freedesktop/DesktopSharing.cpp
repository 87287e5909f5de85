#include "platform/linux/freedesktop/DesktopSharing.h"

#include <array>

#include "platform/FileUrls.h"
#include "platform/linux/freedesktop/ShareTargets.h"

namespace {
constexpr double kTimeout = 2;
constexpr std::array kFinders{mailOffers, kdeConnectOffers, bluetoothOffers, programOffers};

/// Collects the finders' results on the main thread.
struct Gathering {
    std::array<QList<ShareOffer>, kFinders.size()> parts;
    size_t missing = kFinders.size();
    TimerHandle timeout;
    std::function<void(const QList<ShareOffer>&)> found;  // empty after it was called

    void finish(const ShareOffer& last) {
        timeout.cancel();
        const auto call = std::exchange(found, {});
        if (!call) return;
        QList<ShareOffer> all;
        for (const auto& part : parts) all.append(part);
        call(all << last);
    }
};

ShareOffer copying(Pasteboard& pasteboard, const QUrl& thing) {
    const bool file = thing.isLocalFile();
    const QString text = file ? QString::fromUtf8(pathOf(thing)) : QString::fromLatin1(thing.toEncoded());
    return {file ? QStringLiteral("Copy path") : QStringLiteral("Copy link"),
            [&pasteboard, text] { pasteboard.setString(text); },
            {}};
}
}  // namespace

void DesktopSharing::offers(const QUrl& thing, std::function<void(const QList<ShareOffer>&)> found) {
    const auto gathering = std::make_shared<Gathering>();
    gathering->found = lifetime_.guard(std::move(found));
    const ShareOffer copy = copying(pasteboard_, thing);
    gathering->timeout = loop_.after(kTimeout, [gathering, copy] { gathering->finish(copy); });
    for (size_t i = 0; i < kFinders.size(); ++i) {
        const auto take = [gathering, copy, i](const QList<ShareOffer>& part) {
            gathering->parts[i] = part;
            if (--gathering->missing == 0) gathering->finish(copy);
        };
        jobs_.run([&queue = queue_, thing, i] { return kFinders[i](queue, thing); }, take);
    }
}
