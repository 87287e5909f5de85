#include "shelf/ChipActions.h"

#include "platform/Sharing.h"
#include "platform/Workspace.h"

namespace {

constexpr double kDefaultDuration = 0.35;  // seconds

QList<MenuItem> asMenu(const QList<ShareOffer>& offers) {
    QList<MenuItem> items;
    for (const ShareOffer& offer : offers) items.append({offer.title, offer.choose, false, asMenu(offer.choices)});
    return items;
}

}  // namespace

QList<MenuItem> ChipActions::menu(const HeldThing& thing) {
    if (const auto* file = std::get_if<QUrl>(&thing)) return fileMenu(*file);
    if (const auto* bite = std::get_if<Bite>(&thing)) return biteMenu(*bite);
    return {removeItem(thing)};
}

QList<MenuItem> ChipActions::fileMenu(const QUrl& file) {
    QList<MenuItem> items{{QStringLiteral("Open"), [this, file] { use(file); }, false, {}},
                          {QStringLiteral("Reveal in Finder"), [this, file] { workspace_.reveal(file); }, false, {}},
                          shareItem(file)};
    if (Chewer::canChew(file)) {
        const auto into = [&](const QString& title, Chewer::Mode mode) {
            return MenuItem{title, [this, file, mode] { shelf_.chew(file, mode); }, false, {}};
        };
        items.append(MenuItem{});
        items.append({QStringLiteral("Chew"),
                      {},
                      false,
                      {into(QStringLiteral("Into a JPEG"), Chewer::Mode::toJPEG),
                       into(QStringLiteral("Into a PNG"), Chewer::Mode::toPNG),
                       into(QStringLiteral("Smaller"), Chewer::Mode::smaller)}});
    }
    if (Chewer::canRead(file))
        items.append({QStringLiteral("Read the text"), [this, file] { shelf_.readText(file); }, false, {}});
    items.append(MenuItem{});
    items.append(removeItem(file));
    return items;
}

QList<MenuItem> ChipActions::biteMenu(const Bite& bite) {
    const QString title = bite.url() ? QStringLiteral("Open") : QStringLiteral("Copy");
    QList<MenuItem> items{{title, [this, bite] { use(bite); }, false, {}}};
    if (bite.url()) items.append(shareItem(*bite.url()));
    items.append(MenuItem{});
    items.append(removeItem(bite));
    return items;
}

MenuItem ChipActions::shareItem(const QUrl& thing) {
    const auto share = [this, thing] {
        sharing_.offers(thing, [this](const QList<ShareOffer>& offers) {
            if (showSharing && !offers.isEmpty()) showSharing(asMenu(offers));
        });
    };
    return {QStringLiteral("Share…"), share, false, {}};
}

MenuItem ChipActions::removeItem(const HeldThing& thing) {
    return {QStringLiteral("Remove"), [this, thing] { remove(thing); }, false, {}};
}

void ChipActions::use(const HeldThing& thing) {
    if (const auto* file = std::get_if<QUrl>(&thing)) return workspace_.open(*file);
    const auto* bite = std::get_if<Bite>(&thing);
    if (!bite) return;
    if (bite->url()) return workspace_.open(*bite->url());
    shelf_.copy(*bite->text());
}

void ChipActions::remove(const HeldThing& thing) {
    if (const auto* file = std::get_if<QUrl>(&thing))
        model_.withAnimation(Animation::easeInOut(kDefaultDuration), [&] { shelf_.removeItem(*file); });
    else if (const auto* bite = std::get_if<Bite>(&thing))
        shelf_.removeBite(*bite);
    else
        shelf_.removeTimer(std::get<HeldTimer>(thing));
}
