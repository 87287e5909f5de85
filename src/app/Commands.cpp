#include "app/Commands.h"

#include "platform/Preferences.h"
#include "platform/Workspace.h"

namespace {

const QString kWatchDownloads = QStringLiteral("glimmet.watchDownloads");
const QString kWhispers = QStringLiteral("glimmet.whispers");
const QString kMusic = QStringLiteral("glimmet.music");
const QString kSite = QStringLiteral("https://glimmet.example/");
constexpr double kQuietSeconds = 3600;

}  // namespace

Commands::Commands(NotchModel& model, Clock& clock, Preferences& preferences, Workspace& workspace)
    : m_(model), clock_(clock), preferences_(preferences), workspace_(workspace) {}

QList<MenuItem> Commands::menu() {
    QList<MenuItem> items;
    for (const Toy toy : allToys) {
        const QString name = rawValue(toy);
        items.append({name, [this, name] { pick(name); }, m_.toy == toy, {}});
    }
    items.append(MenuItem{});
    items.append(timerItem());
    items.append(quietItem());
    items.append(MenuItem{});
    // What these switch on is not there yet, so they cannot be chosen.
    items.append({QStringLiteral("Watch Downloads"), {}, preferences_.boolean(kWatchDownloads), {}});
    items.append({QStringLiteral("Meeting whispers"), {}, preferences_.boolean(kWhispers), {}});
    items.append({QStringLiteral("Music in the notch"), {}, preferences_.boolean(kMusic), {}});
    items.append(updateItem());
    items.append(MenuItem{});
    items.append({m_.hidden ? QStringLiteral("Show Glimmet") : QStringLiteral("Hide Glimmet"),
                  [this] { toggleHidden(); },
                  false,
                  {}});
    items.append({QStringLiteral("Quit Glimmet"), quit, false, {}});
    return items;
}

MenuItem Commands::timerItem() {
    MenuItem item{QStringLiteral("Hold a timer"), {}, false, {}};
    for (const int minutes : {5, 15, 25})
        item.submenu.append(
            {QStringLiteral("%1 minutes").arg(minutes), [this, minutes] { holdTimer(minutes); }, false, {}});
    return item;
}

MenuItem Commands::quietItem() {
    if (!m_.quiet()) return {QStringLiteral("Shh for an hour"), [this] { shh(); }, false, {}};
    const int minutes = int((m_.quietUntil.get() - clock_.now()) / 60);
    return {QStringLiteral("Wake up (%1 min left)").arg(minutes), [this] { wakeUp(); }, false, {}};
}

MenuItem Commands::updateItem() {
    if (m_.updateAvailable->has_value())
        return {
            QStringLiteral("v%1 is out · get it").arg(m_.updateAvailable->value()), [this] { openSite(); }, false, {}};
    // Nothing can look for a newer version yet, so this cannot be chosen.
    return {QStringLiteral("Check for updates…"), {}, false, {}};
}

void Commands::pick(const QString& name) {
    for (const Toy toy : allToys) {
        if (rawValue(toy) == name) m_.pickToy(toy);
    }
}

void Commands::holdTimer(int minutes) {
    m_.withAnimation(Animation::spring(0.32, 0.8), [&] { m_.addTimer(minutes); });
}

void Commands::shh() {
    m_.withAnimation(Animation::easeInOut(0.5), [&] { m_.quietUntil = clock_.now() + kQuietSeconds; });
}

void Commands::wakeUp() {
    m_.quietUntil = Date::distantPast();
    ++m_.glanceCount;
}

void Commands::openSite() {
    workspace_.open(QUrl(kSite));
}

void Commands::toggleHidden() {
    m_.withAnimation(commonSpring(), [&] { m_.hidden = !m_.hidden; });
}
