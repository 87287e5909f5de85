#include "music/NowPlaying.h"

#include "music/Applications.h"
#include "music/TabTitle.h"

namespace {

constexpr double kInterval = 4;  // seconds
constexpr int kMaxFails = 3;
constexpr double kSearchDelay = 1.5;  // seconds

/// The track of the first tab that plays one; the title is what of it is shown.
std::optional<Players::Track> trackIn(const QList<Players::Track>& tabs) {
    for (const Players::Track& tab : tabs) {
        const auto track = trackInTabTitle(tab.title);
        if (track || tab.isMusic) return Players::Track{track.value_or(tab.title), tab.cover};
    }
    return {};
}

}  // namespace

NowPlaying::NowPlaying(NotchModel& model, MainLoop& loop, Players& players, Artwork& artwork)
    : model_(model), loop_(loop), players_(players), artwork_(artwork) {
    players_.onChange = [this] { changed(); };
    // Later, since leaving has an animation of its own.
    pointerLeaves_ = model_.hovering.didSet.subscribe([this] {
        if (model_.hovering || !model_.musicPaused) return;
        loop_.post(lifetime_.guard([this] {
            if (!model_.hovering && model_.musicPaused) applyNowPlaying({});
        }));
    });
}

NowPlaying::~NowPlaying() {
    players_.onChange = nullptr;
}

void NowPlaying::startMusicWatch() {
    endPolls();
    players_.watch(true);
    musicTimer_ = loop_.every(kInterval, [this] { musicTickFired(); });
    musicTickFired();
}

void NowPlaying::endPolls() {
    musicTimer_.cancel();
    artworkDelay_.cancel();
    players_.watch(false);
    polls_.emplace();
    polling_ = false;
    waiting_.clear();
}

void NowPlaying::stopMusicWatch() {
    stopMusicPoll();
    model_.artwork = std::nullopt;
    musicSource_.reset();
}

void NowPlaying::stopMusicPoll() {
    endPolls();
    model_.musicPlaying = false;
    model_.musicPaused = false;
    model_.musicTrack = std::nullopt;
}

void NowPlaying::musicTickFired() {
    if (!musicTimer_) return;
    ++musicTick_;
    if (musicFails_ < kMaxFails)
        poll(Cause::tick);
    else
        stopMusicPoll();
}

void NowPlaying::changed() {
    if (musicTimer_ && !waiting_.contains(Cause::change)) poll(Cause::change);
}

void NowPlaying::poll(Cause cause) {
    if (polling_) return waiting_.append(cause);
    polling_ = true;
    pollNowPlaying(cause);
}

void NowPlaying::pollNowPlaying(Cause cause) {
    if (const auto result = askPlayers(cause)) return finish(result);
    if (const auto held = heldTrack()) return finish(held);
    if (browsersAreDue(cause)) return askBrowsers(0);
    // Not their turn: what a browser was playing stays, unless it has been closed.
    const bool stays = musicSource_ && isBrowser(*musicSource_) && players_.isRunning(*musicSource_);
    stays ? goOn() : finish({});
}

// Only ticks count failures: a change elsewhere asks nobody anew.
std::optional<NowPlaying::Result> NowPlaying::askPlayers(Cause cause) {
    for (const QString& player : playerApps) {
        if (!players_.isRunning(player)) continue;
        const auto track = players_.track(player);
        if (cause == Cause::tick) musicFails_ = track ? 0 : musicFails_ + 1;
        if (track && !track->title.isEmpty()) return Result{player, track->title, track->cover};
    }
    return {};
}

// What pauses under the pointer stays until the pointer leaves, so that the same button can resume it.
std::optional<NowPlaying::Result> NowPlaying::heldTrack() const {
    if (!model_.hovering || !model_.musicPlaying || !musicSource_) return {};
    auto track = players_.paused(*musicSource_);
    if (track && isBrowser(*musicSource_)) track = trackIn({*track});
    if (!track || track->title.isEmpty()) return {};
    return Result{*musicSource_, track->title, track->cover, true};
}

// Every fourth tick, or every other one while a browser's track is shown. A change is theirs, too, and counts for no
// tick: what they play is known already.
bool NowPlaying::browsersAreDue(Cause cause) const {
    const bool shown = model_.musicTrack->has_value() && musicSource_ && isBrowser(*musicSource_);
    return cause == Cause::change || (musicTick_ & (shown ? 1 : 3)) == 0;
}

void NowPlaying::askBrowsers(qsizetype index) {
    for (; index < browserApps.size(); ++index) {
        const QString& browser = browserApps[index];
        if (!players_.isRunning(browser) || deniedBrowsers_.contains(browser)) continue;
        return players_.tabs(browser, polls_->guard([this, index](const auto& tabs) {
            const QString& name = browserApps[index];
            if (!tabs) deniedBrowsers_.insert(name);
            const auto track = tabs ? trackIn(*tabs) : std::nullopt;
            track ? finish(Result{name, track->title, track->cover}) : askBrowsers(index + 1);
        }));
    }
    finish({});
}

void NowPlaying::finish(const std::optional<Result>& result) {
    applyNowPlaying(result);
    goOn();
}

void NowPlaying::goOn() {
    polling_ = false;
    if (!waiting_.isEmpty()) poll(waiting_.takeFirst());
}

void NowPlaying::applyNowPlaying(const std::optional<Result>& result) {
    musicSource_ = result ? std::optional(result->source) : std::nullopt;
    if (result.has_value() != model_.musicPlaying)
        model_.withAnimation(Animation::easeInOut(0.4), [&] { model_.musicPlaying = result.has_value(); });
    const bool paused = result && result->isPaused;
    if (paused != model_.musicPaused) model_.musicPaused = paused;
    const auto track = result ? std::optional(result->track) : std::nullopt;
    if (track == model_.musicTrack.get()) {
        // Many players tell the cover a little after the track.
        if (result && !result->cover.isEmpty() && result->cover != seenCover_) findArtwork(*result);
        return;
    }
    model_.musicTrack = track;
    model_.artwork = std::nullopt;
    result ? findArtwork(*result) : artworkDelay_.cancel();
}

// A browser may tell the cover a little later; until then its track's name is sent nowhere.
void NowPlaying::findArtwork(const Result& result) {
    seenCover_ = result.cover;
    const Artwork::Request request{result.track, result.source, isBrowser(result.source), result.cover};
    const auto show = [this, number = ++lookups_, track = result.track](const std::optional<QImage>& image) {
        if (number != lookups_ || model_.musicTrack.get() != track) return;
        model_.withAnimation(Animation::easeOut(0.25), [&] { model_.artwork = image; });
    };
    const auto lookUp = [this, request, show] { artwork_.lookUpArtwork(request, lifetime_.guard(show)); };
    artworkDelay_.cancel();
    if (request.isBrowser && request.cover.isEmpty() && !artwork_.isKnown(request))
        artworkDelay_ = loop_.after(kSearchDelay, lookUp);
    else
        lookUp();
}
