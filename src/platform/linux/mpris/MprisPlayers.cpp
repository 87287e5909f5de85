#include "platform/linux/mpris/MprisPlayers.h"

#include <algorithm>
#include <tuple>
#include <utility>

#include "platform/linux/PlainLine.h"
#include "platform/linux/mpris/MediaApplications.h"

using namespace Qt::StringLiterals;

namespace {

using Status = MprisEntry::Status;

/// What it plays, in one line: "name — artist". Nameless tracks go by their file, or by their player.
QString lineFor(const MprisEntry& entry) {
    QString name = entry.title;
    if (name.isEmpty()) name = plainLine(entry.address.fileName());
    if (name.isEmpty()) name = entry.service.section(u'.', 3, 3);
    return entry.artist.isEmpty() ? name : name + u" — "_s + entry.artist;
}

bool isMusicSite(const QUrl& address) {
    static const QStringList hosts{u"music.youtube.com"_s, u"open.spotify.com"_s, u"soundcloud.com"_s,
                                   u"music.apple.com"_s,   u"deezer.com"_s,       u"tidal.com"_s,
                                   u"bandcamp.com"_s,      u"qobuz.com"_s};
    const QString host = u'.' + address.host();
    return std::ranges::any_of(hosts, [&](const QString& site) { return host.endsWith(u'.' + site); });
}

bool isMusic(const MprisEntry& entry) {
    const bool isSong = !entry.title.isEmpty() && !entry.artist.isEmpty() && !entry.album.isEmpty();
    return isSong || isMusicSite(entry.address);
}

/// A player's track; a browser's only if that is sure, or else what its tab says.
Players::Track trackOf(const MprisEntry& entry) {
    const bool isTab = !mediaApplication(entry.application).classes.isEmpty();
    if (isTab && !isMusic(entry)) return {entry.title, entry.cover, false};
    return {lineFor(entry), entry.cover};
}

/// Whether the window's title says what this paused track is called. Short names stand in many titles.
bool isAbout(const QString& title, const QString& track) {
    return track.size() > 3 ? title.contains(track) : title.startsWith(track);
}

}  // namespace

MprisPlayers::MprisPlayers(MainLoop& loop, std::unique_ptr<WindowTitles> titles)
    : loop_(loop), titles_(std::move(titles)) {}

MprisPlayers::~MprisPlayers() {
    watch(false);
}

void MprisPlayers::watch(bool on) {
    if (on == bool(watch_)) return;
    if (titles_) titles_->watch(on);
    if (on) {
        const auto take = [this, number = ++watches_](const QList<MprisEntry>& entries) {
            if (!watch_ || number != watches_) return;
            entries_ = entries;
            if (onChange) onChange();
        };
        watch_ = std::make_shared<MprisWatch>([&loop = loop_, take = lifetime_.guard(take)](const auto& entries) {
            loop.post([take, entries]() mutable { take(entries); });
        });
        watch_->start();
    } else {
        std::exchange(watch_, nullptr)->stop();
        entries_.clear();
    }
}

const MprisEntry* MprisPlayers::currentOf(const QString& application) const {
    const auto rank = [](const MprisEntry& entry) {
        return std::tuple(entry.answers, entry.status == Status::playing, entry.lastPlayed);
    };
    const MprisEntry* best = nullptr;
    for (const MprisEntry& entry : entries_) {
        if (entry.application == application && (!best || rank(entry) > rank(*best))) best = &entry;
    }
    return best;
}

bool MprisPlayers::isRunning(const QString& application) const {
    return currentOf(application) || (titles_ && titles_->isOpen(mediaApplication(application).classes));
}

std::optional<Players::Track> MprisPlayers::track(const QString& player) const {
    const MprisEntry* entry = currentOf(player);
    if (!entry) return Track{};
    if (!entry->answers) return {};
    return entry->status == Status::playing ? Track{lineFor(*entry), entry->cover} : Track{};
}

std::optional<Players::Track> MprisPlayers::paused(const QString& application) const {
    const MprisEntry* entry = currentOf(application);
    if (!entry || entry->status != Status::paused || entry->lastPlayed == 0) return {};
    return trackOf(*entry);
}

void MprisPlayers::tabs(const QString& browser, std::function<void(std::optional<QList<Track>>)> then) {
    const MprisEntry* entry = currentOf(browser);
    if (!titles_ && entry && !entry->answers) return loop_.post([then = std::move(then)] { then({}); });
    QList<Track> playing;
    QStringList paused;
    for (const MprisEntry& one : std::as_const(entries_)) {
        if (one.application != browser || !one.answers) continue;
        if (one.status == Status::playing)
            playing.append(trackOf(one));
        else if (!one.title.isEmpty())
            paused.append(one.title);
    }
    const MediaApplication& known = mediaApplication(browser);
    // A window's title says what it could play; the entry on the bus knows that it has paused.
    const auto add = [&known, playing, paused, then = std::move(then)](const QStringList& titles) {
        QList<Track> all = playing;
        for (const QString& title : titles) {
            const auto names = [&title](const QString& track) { return isAbout(title, track); };
            if (std::ranges::none_of(paused, names)) all.append({tabTitle(title, known), {}, false});
        }
        then(all);
    };
    if (titles_) return titles_->titles(known.classes, lifetime_.guard(add));
    loop_.post([add] { add({}); });
}

bool MprisPlayers::canRun(const QString& application) const {
    const MprisEntry* entry = currentOf(application);
    return entry && (entry->status == Status::playing || entry->lastPlayed > 0);
}

void MprisPlayers::run(const QString& player, Verb verb) {
    static constexpr const char* kMethods[] = {"PlayPause", "Next", "Previous"};
    if (const MprisEntry* entry = currentOf(player); entry && watch_) watch_->tell(entry->service, kMethods[int(verb)]);
}

void MprisPlayers::seek(const QString& player, double seconds) {
    if (const MprisEntry* entry = currentOf(player); entry && watch_)
        watch_->seek(entry->service, qint64(seconds * 1e6));
}
