#include "platform/linux/mpris/MprisPlayers.h"

#include <algorithm>
#include <tuple>
#include <utility>

#include "platform/linux/mpris/MediaApplications.h"

using namespace Qt::StringLiterals;

namespace {

using Status = MprisEntry::Status;

/// What it plays, in one line: "name — artist". Nameless tracks go by their file, or by their player.
QString lineFor(const MprisEntry& entry) {
    QString name = entry.title;
    if (name.isEmpty()) name = entry.address.fileName();
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

QString withoutEnding(const QString& title, const QStringList& endings) {
    for (const QString& ending : endings) {
        if (title.endsWith(ending)) return title.chopped(ending.size());
    }
    return title;
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

// The one that plays counts, else the one that has played last.
const MprisEntry* MprisPlayers::current(const std::function<bool(const MprisEntry&)>& isCandidate) const {
    const auto rank = [](const MprisEntry& entry) {
        return std::tuple(entry.answers, entry.status == Status::playing, entry.lastPlayed);
    };
    const MprisEntry* best = nullptr;
    for (const MprisEntry& entry : entries_) {
        if (isCandidate(entry) && (!best || rank(entry) > rank(*best))) best = &entry;
    }
    return best;
}

const MprisEntry* MprisPlayers::currentOf(const QString& application) const {
    return current([&](const MprisEntry& entry) { return entry.application == application; });
}

const MprisEntry* MprisPlayers::currentBrowser() const {
    return current([](const MprisEntry& entry) {
        return !mediaApplication(entry.application)->classes.isEmpty() && entry.lastPlayed > 0;
    });
}

bool MprisPlayers::isRunning(const QString& application) const {
    const MediaApplication* known = mediaApplication(application);
    if (!known) return false;
    return currentOf(known->name) || (titles_ && titles_->isOpen(known->classes));
}

std::optional<QString> MprisPlayers::track(const QString& player) {
    const MprisEntry* entry = currentOf(player);
    if (!entry) return QString();
    if (!entry->answers) {
        if (watch_) watch_->askAgain(entry->service);
        return {};
    }
    return entry->status == Status::playing ? lineFor(*entry) : QString();
}

bool MprisPlayers::isPaused(const QString& application) const {
    const MprisEntry* entry = currentOf(application);
    return entry && entry->status == Status::paused && entry->lastPlayed > 0;
}

QUrl MprisPlayers::cover(const QString& application) const {
    const MprisEntry* entry = currentOf(application);
    return entry && entry->status == Status::playing ? entry->cover : QUrl();
}

void MprisPlayers::tabs(const QString& browser, std::function<void(std::optional<QList<Tab>>)> then) {
    const MediaApplication* known = mediaApplication(browser);
    const MprisEntry* entry = currentOf(browser);
    if (!known || (!titles_ && entry && !entry->answers)) return loop_.post([then = std::move(then)] { then({}); });
    QList<Tab> playing;
    QStringList paused;
    for (const MprisEntry& one : std::as_const(entries_)) {
        if (one.application != browser || !one.answers) continue;
        if (one.status == Status::playing)
            playing.append(isMusic(one) ? Tab{lineFor(one), true} : Tab{one.title, false});
        else if (!one.title.isEmpty())
            paused.append(one.title);
    }
    // A tab's title says what it could play; its media entry knows that it has paused.
    const auto add = [known, playing, paused, then = std::move(then)](const QStringList& titles) {
        QList<Tab> all = playing;
        for (const QString& title : titles) {
            const auto names = [&title](const QString& track) { return title.contains(track); };
            if (std::ranges::none_of(paused, names)) all.append({withoutEnding(title, known->endings), false});
        }
        then(all);
    };
    if (titles_) return titles_->titles(known->classes, lifetime_.guard(add));
    loop_.post([add] { add({}); });
}

void MprisPlayers::tell(const MprisEntry* entry, Verb verb) {
    if (!entry || !watch_) return;
    switch (verb) {
        case Verb::playPause:
            return watch_->tell(entry->service, "PlayPause");
        case Verb::nextTrack:
            return watch_->tell(entry->service, "Next");
        case Verb::previousTrack:
            return watch_->tell(entry->service, "Previous");
    }
}

void MprisPlayers::run(const QString& player, Verb verb) {
    tell(currentOf(player), verb);
}

void MprisPlayers::runBrowser(Verb verb) {
    tell(currentBrowser(), verb);
}

void MprisPlayers::seek(const QString& player, double seconds) {
    if (const MprisEntry* entry = currentOf(player); entry && watch_)
        watch_->seek(entry->service, qint64(seconds * 1e6));
}
