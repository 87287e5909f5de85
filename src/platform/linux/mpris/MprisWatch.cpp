#include "platform/linux/mpris/MprisWatch.h"

#include <algorithm>
#include <utility>

#include "platform/linux/mpris/MediaApplications.h"

namespace {

// Milliseconds. Some players tell the parts of a track one by one.
constexpr int kSettle = 15;
constexpr int kReportPause = 200;
constexpr int kFirstPause = 2000, kMaxPause = 60'000;  // before somebody is asked again
constexpr size_t kMaxPlayers = 128;

constexpr const char* kNamespace = "org.mpris.MediaPlayer2";
constexpr const char* kPlayer = "org.mpris.MediaPlayer2.Player";
constexpr const char* kPath = "/org/mpris/MediaPlayer2";
constexpr const char* kProperties = "org.freedesktop.DBus.Properties";
constexpr const char* kBus = "org.freedesktop.DBus";

/// One that only repeats what another player says is not a player.
bool isPlayer(const QByteArray& service) {
    return service.startsWith("org.mpris.MediaPlayer2.") && service != "org.mpris.MediaPlayer2.playerctld";
}

/// The first value of an answer, if that has this type.
GVariantPtr firstOf(GVariant* answer, const char* type) {
    if (!answer || !g_variant_is_of_type(answer, G_VARIANT_TYPE(type))) return {};
    return GVariantPtr(g_variant_get_child_value(answer, 0));
}

std::vector<QByteArray> textsIn(GVariant* list) {
    std::vector<QByteArray> texts;
    for (gsize i = 0; i < g_variant_n_children(list); ++i) {
        const GVariantPtr text(g_variant_get_child_value(list, i));
        texts.emplace_back(g_variant_get_string(text.get(), nullptr));
    }
    return texts;
}

}  // namespace

void MprisWatch::connected() {
    subscribe(kBus, "NameOwnerChanged", nullptr, kNamespace, G_DBUS_SIGNAL_FLAGS_MATCH_ARG0_NAMESPACE,
              [](BusThread& bus, const char* sender, GVariant* parameters) {
                  // Anybody may send a signal with this name.
                  if (qstrcmp(sender, kBus) == 0) static_cast<MprisWatch&>(bus).ownerChanged(parameters);
              });
    subscribe(kProperties, "PropertiesChanged", kPath, kPlayer, G_DBUS_SIGNAL_FLAGS_NONE,
              [](BusThread& bus, const char* sender, GVariant* parameters) {
                  static_cast<MprisWatch&>(bus).propertiesChanged(sender, parameters);
              });
    list();
}

void MprisWatch::disconnected() {
    players_.clear();
    changed();
}

// Players that come later announce themselves.
void MprisWatch::list() {
    const Peer bus{kBus, "/org/freedesktop/DBus", kBus};
    call(bus, "ListNames", nullptr, [this, bus](GVariant* answer) {
        const GVariantPtr names = firstOf(answer, "(as)");
        if (!names) return listLater();
        auto services = textsIn(names.get());
        std::erase_if(services, [](const QByteArray& service) { return !isPlayer(service); });
        services.resize(std::min(services.size(), kMaxPlayers));
        for (const QByteArray& service : services) {
            call(bus, "GetNameOwner", g_variant_new("(s)", service.constData()), [this, service](GVariant* reply) {
                if (const auto owner = firstOf(reply, "(s)")) add(service, g_variant_get_string(owner.get(), nullptr));
            });
        }
    });
}

void MprisWatch::listLater() {
    listTimer_ = later(kFirstPause, [this] { list(); });
}

void MprisWatch::ownerChanged(GVariant* parameters) {
    if (!g_variant_is_of_type(parameters, G_VARIANT_TYPE("(sss)"))) return;
    const auto texts = textsIn(parameters);
    const QByteArray &service = texts[0], &owner = texts[2];
    if (!isPlayer(service)) return;
    const QString name = QString::fromUtf8(service);
    // One that found no room may have it now.
    if (players_.size() >= kMaxPlayers) listLater();
    if (std::erase_if(players_, [&](const Player& player) { return player.entry.service == name; })) changed();
    if (!owner.isEmpty()) add(service, owner);
}

void MprisWatch::add(const QByteArray& service, const QByteArray& owner) {
    const QString name = QString::fromUtf8(service);
    if (find(name) || players_.size() >= kMaxPlayers) return;
    MprisEntry entry;
    entry.service = name;
    entry.application = applicationOfPlayer(name, {}, {}).name;
    players_.push_back({owner, entry});
    changed();
    askPause_ = kFirstPause;
    askIdentity(players_.back());
    askState(players_.back());
}

// Those that have not answered: they may have been too slow, or the bus too busy.
void MprisWatch::askAgainLater() {
    if (askTimer_) return;
    askTimer_ = later(askPause_, [this] {
        askTimer_.reset();
        askPause_ = std::min(2 * askPause_, kMaxPause);
        for (const Player& player : players_) {
            if (!player.isIdentified) askIdentity(player);
            if (!player.entry.answers) askState(player);
        }
    });
}

MprisWatch::Player* MprisWatch::find(const QString& service, const QByteArray& owner) {
    const auto found = std::ranges::find_if(players_, [&](const Player& player) {
        return player.entry.service == service && (owner.isEmpty() || player.owner == owner);
    });
    return found == players_.end() ? nullptr : &*found;
}

void MprisWatch::askIdentity(const Player& player) {
    call({player.owner, kPath, kProperties}, "GetAll", g_variant_new("(s)", kNamespace),
         [this, service = player.entry.service, owner = player.owner](GVariant* answer) {
             Player* known = find(service, owner);
             const auto told = firstOf(answer, "(a{sv})");
             if (!known) return;
             if (!told) return askAgainLater();
             known->isIdentified = true;
             MprisEntry entry = known->entry;
             const QString desktopEntry = plainText(told.get(), "DesktopEntry");
             entry.application = applicationOfPlayer(service, desktopEntry, plainText(told.get(), "Identity")).name;
             setEntry(*known, entry);
         });
}

void MprisWatch::askState(const Player& player) {
    call({player.owner, kPath, kProperties}, "GetAll", g_variant_new("(s)", kPlayer),
         [this, service = player.entry.service, owner = player.owner](GVariant* answer) {
             Player* known = find(service, owner);
             if (!known) return;
             MprisEntry entry = known->entry;
             const auto told = firstOf(answer, "(a{sv})");
             entry.answers = told != nullptr;
             if (told) readPlayer(told.get(), entry);
             setEntry(*known, entry);
             if (!told) askAgainLater();
         });
}

void MprisWatch::propertiesChanged(const char* sender, GVariant* parameters) {
    if (!g_variant_is_of_type(parameters, G_VARIANT_TYPE("(sa{sv}as)"))) return;
    const GVariantPtr told(g_variant_get_child_value(parameters, 1)), gone(g_variant_get_child_value(parameters, 2));
    // Some players only say what is no longer true.
    const bool isStale = std::ranges::any_of(textsIn(gone.get()), [](const QByteArray& property) {
        return property == "Metadata" || property == "PlaybackStatus";
    });
    // A program may have several names on the bus.
    for (Player& player : players_) {
        if (player.owner != sender) continue;
        MprisEntry entry = player.entry;
        entry.answers = true;
        readPlayer(told.get(), entry);
        setEntry(player, entry);
        if (isStale) askState(player);
    }
}

void MprisWatch::setEntry(Player& player, MprisEntry entry) {
    if (entry == player.entry) return;
    const bool isNew = entry.status != player.entry.status || entry.title != player.entry.title;
    if (entry.status == MprisEntry::Status::playing && isNew) entry.lastPlayed = ++tracksStarted_;
    player.entry = std::move(entry);
    changed();
}

void MprisWatch::changed() {
    hasChanged_ = true;
    if (!reportTimer_) reportTimer_ = later(kSettle, [this] { reportNow(); });
}

void MprisWatch::reportNow() {
    reportTimer_.reset();
    if (isEnding() || !std::exchange(hasChanged_, false)) return;
    reportTimer_ = later(kReportPause, [this] { reportNow(); });
    QList<MprisEntry> entries;
    for (const Player& player : players_) entries.append(player.entry);
    report_(entries);
}

void MprisWatch::tellLater(const QString& service, const char* method, std::function<GVariant*()> arguments) {
    inBackground([this, service, method, arguments = std::move(arguments)] {
        if (const Player* player = find(service))
            call({player->owner, kPath, kPlayer}, method, arguments(), [](GVariant*) {});
    });
}

void MprisWatch::tell(const QString& service, const char* method) {
    tellLater(service, method, [] { return nullptr; });
}

void MprisWatch::seek(const QString& service, qint64 microseconds) {
    tellLater(service, "Seek", [=] { return g_variant_new("(x)", gint64(microseconds)); });
}
