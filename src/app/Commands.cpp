#include "app/Commands.h"

#include "platform/Preferences.h"
#include "platform/Workspace.h"
#include "shelf/Shelf.h"

namespace {

const QString kSite = QStringLiteral("https://glimmet.example/");
constexpr double kQuietSeconds = 3600;

}  // namespace

Commands::Commands(NotchModel& model, Shelf& shelf, Clock& clock, Preferences& preferences, Workspace& workspace,
                   QList<Switch> switches)
    : model_(model),
      shelf_(shelf),
      clock_(clock),
      preferences_(preferences),
      workspace_(workspace),
      switches_(std::move(switches)) {}

void Commands::startSwitches() {
    for (const Switch& one : switches_) {
        if (one.start && preferences_.boolean(one.key)) one.start();
    }
}

QList<MenuItem> Commands::menu() {
    QList<MenuItem> items;
    for (const Toy toy : allToys) {
        const QString name = rawValue(toy);
        items.append({name, [this, name] { pick(name); }, model_.toy == toy, {}});
    }
    items.append(MenuItem{});
    items.append(timerItem());
    items.append(quietItem());
    items.append(MenuItem{});
    for (const Switch& one : switches_) items.append(switchItem(one));
    items.append(updateItem());
    items.append(MenuItem{});
    items.append({model_.hidden ? QStringLiteral("Show Glimmet") : QStringLiteral("Hide Glimmet"),
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
    if (!model_.isQuiet(clock_)) return {QStringLiteral("Shh for an hour"), [this] { shh(); }, false, {}};
    const int minutes = int((model_.quietUntil.get() - clock_.now()) / 60);
    return {QStringLiteral("Wake up (%1 min left)").arg(minutes), [this] { wakeUp(); }, false, {}};
}

MenuItem Commands::switchItem(const Switch& shown) {
    const auto action = [this, shown] { flip(shown); };
    return {shown.title, shown.start ? std::function<void()>(action) : nullptr, preferences_.boolean(shown.key), {}};
}

MenuItem Commands::updateItem() {
    if (model_.updateAvailable->has_value())
        return {QStringLiteral("v%1 is out · get it").arg(model_.updateAvailable->value()),
                [this] { openSite(); },
                false,
                {}};
    // Without an action, because there is no update check yet.
    return {QStringLiteral("Check for updates…"), {}, false, {}};
}

void Commands::pick(const QString& name) {
    for (const Toy toy : allToys) {
        if (rawValue(toy) != name) continue;
        model_.withAnimation(commonSpring(), [&] {
            model_.toy = toy;
            model_.dragOffset = QSizeF(0, 0);
            model_.dragging = false;
            model_.asleep = false;
        });
    }
}

void Commands::holdTimer(int minutes) {
    model_.withAnimation(Animation::spring(0.32, 0.8), [&] { shelf_.addTimer(minutes); });
}

void Commands::shh() {
    model_.withAnimation(Animation::easeInOut(0.5), [&] { model_.quietUntil = clock_.now() + kQuietSeconds; });
}

void Commands::wakeUp() {
    model_.quietUntil = Date::distantPast();
    ++model_.glanceCount;
}

void Commands::openSite() {
    workspace_.open(QUrl(kSite));
}

void Commands::toggleHidden() {
    model_.withAnimation(commonSpring(), [&] { model_.hidden = !model_.hidden; });
}

void Commands::flip(const Switch& flipped) {
    const bool on = !preferences_.boolean(flipped.key);
    preferences_.setBoolean(flipped.key, on);
    on ? flipped.start() : flipped.stop();
}
