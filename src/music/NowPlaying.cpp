#include "music/NowPlaying.h"

#include <iterator>

#include "music/Applications.h"
#include "music/TabTitle.h"

namespace {

constexpr double kInterval = 4;  // seconds
constexpr int kMaxFails = 3;

/// The track of the first tab that plays one.
std::optional<QString> trackIn(const QList<Players::Tab>& tabs) {
    for (const Players::Tab& tab : tabs) {
        const auto track = trackInTabTitle(tab.title);
        if (track || tab.isMusic) return track.value_or(tab.title);
    }
    return {};
}

}  // namespace

NowPlaying::NowPlaying(NotchModel& model, MainLoop& loop, Players& players, Artwork& artwork)
    : model_(model), loop_(loop), players_(players), artwork_(artwork) {
    players_.onChange = [this] { changed(); };
    pointerLeaves_ = model_.hovering.didSet.subscribe([this] {
        if (!model_.hovering && model_.musicPaused) applyNowPlaying({});
    });
}

void NowPlaying::startMusicWatch() {
    players_.watch(true);
    pollLifetime_.emplace();
    musicTimer_ = loop_.every(kInterval, [this] { musicTickFired(); });
    musicTickFired();
}

void NowPlaying::stopMusicWatch() {
    musicTimer_.cancel();
    players_.watch(false);
    pollLifetime_.reset();
    polling_ = false;
    waiting_.clear();
    model_.musicPlaying = false;
    model_.musicPaused = false;
    model_.musicTrack = std::nullopt;
    model_.artwork = std::nullopt;
    musicSource_.reset();
}

void NowPlaying::musicTickFired() {
    if (!musicTimer_) return;
    ++musicTick_;
    if (musicFails_ < kMaxFails)
        poll(Cause::tick);
    else
        stopMusicPoll();
}

// Does not count as a tick: a player that changes often must not bring the browsers' turn forward.
void NowPlaying::changed() {
    if (musicTimer_ && musicFails_ < kMaxFails && !waiting_.contains(Cause::change)) poll(Cause::change);
}

void NowPlaying::stopMusicPoll() {
    musicTimer_.cancel();
    players_.watch(false);
    model_.musicPlaying = false;
    model_.musicPaused = false;
    model_.musicTrack = std::nullopt;
}

void NowPlaying::poll(Cause cause) {
    if (polling_) return waiting_.append(cause);
    polling_ = true;
    pollNowPlaying(cause);
}

void NowPlaying::pollNowPlaying(Cause cause) {
    if (const auto result = askPlayers()) return finish(result);
    if (browsersAreDue(cause)) return askBrowsers(0);
    // Not their turn: what a browser was playing stays, unless it has been closed.
    const bool stays = musicSource_ && isBrowser(*musicSource_) && players_.isRunning(identifierOf(*musicSource_));
    stays ? goOn() : finish({});
}

std::optional<NowPlaying::Result> NowPlaying::askPlayers() {
    for (const Application& player : playerApps) {
        if (!players_.isRunning(player.identifier)) continue;
        const auto track = players_.track(player.name);
        musicFails_ = track ? 0 : musicFails_ + 1;
        if (track && !track->isEmpty()) return Result{player.name, *track};
    }
    return {};
}

// Every fourth tick; every other one while a browser's track is shown.
bool NowPlaying::browsersAreDue(Cause cause) const {
    const bool shown = model_.musicTrack->has_value() && musicSource_ && isBrowser(*musicSource_);
    return cause == Cause::change || (musicTick_ & (shown ? 1 : 3)) == 0;
}

void NowPlaying::askBrowsers(size_t index) {
    for (; index < std::size(browserApps); ++index) {
        const Application& browser = browserApps[index];
        if (!players_.isRunning(browser.identifier) || deniedBrowsers_.contains(browser.name)) continue;
        return players_.tabs(browser.name, pollLifetime_->guard([this, index](const auto& tabs) {
            const QString& name = browserApps[index].name;
            if (!tabs) deniedBrowsers_.insert(name);
            const auto track = tabs ? trackIn(*tabs) : std::nullopt;
            track ? finish(Result{name, *track}) : askBrowsers(index + 1);
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

// A track that pauses under the pointer stays until the pointer leaves, so that the same button can resume it.
bool NowPlaying::holdsPaused() const {
    return model_.hovering && model_.musicPlaying && musicSource_ && players_.isPaused(*musicSource_);
}

void NowPlaying::applyNowPlaying(const std::optional<Result>& result) {
    const bool paused = !result && holdsPaused();
    if (paused != model_.musicPaused) model_.musicPaused = paused;
    if (paused) return;
    musicSource_ = result ? std::optional(result->source) : std::nullopt;
    if (result.has_value() != model_.musicPlaying)
        model_.withAnimation(Animation::easeInOut(0.4), [&] { model_.musicPlaying = result.has_value(); });
    const auto track = result ? std::optional(result->track) : std::nullopt;
    if (track == model_.musicTrack.get()) {
        // Many players tell the cover a little after the track.
        if (result && !model_.artwork->has_value() && players_.cover(result->source) != seenCover_)
            findArtwork(*result);
        return;
    }
    model_.musicTrack = track;
    model_.artwork = std::nullopt;
    if (result) findArtwork(*result);
}

void NowPlaying::findArtwork(const Result& result) {
    seenCover_ = players_.cover(result.source);
    const auto show = [this, track = result.track](const std::optional<QImage>& image) {
        if (model_.musicTrack.get() != track) return;
        model_.withAnimation(Animation::easeOut(0.25), [&] { model_.artwork = image; });
    };
    artwork_.lookUpArtwork(result.track, result.source, isBrowser(result.source), lifetime_.guard(show));
}
