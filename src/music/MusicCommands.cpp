#include "music/MusicCommands.h"

#include <cmath>
#include <utility>

#include "music/Applications.h"

using namespace Qt::StringLiterals;

namespace {

constexpr double kPlayerRefresh = 0.4, kBrowserRefresh = 0.9;  // seconds until the command shows
constexpr double kSeekSeconds = 5;
constexpr double kSeekThreshold = 9;  // points
constexpr double kSeekPause = 0.25;   // seconds between two seeks

struct Command {
    QString word;
    Players::Verb verb;
    MediaKeys::Key key;
};

const Command* commandFor(const QString& word) {
    static const Command commands[] = {{u"playpause"_s, Players::Verb::playPause, MediaKeys::Key::playPause},
                                       {u"next"_s, Players::Verb::nextTrack, MediaKeys::Key::next},
                                       {u"previous"_s, Players::Verb::previousTrack, MediaKeys::Key::previous}};
    for (const Command& command : commands) {
        if (command.word == word) return &command;
    }
    return nullptr;
}

double seekFor(const QString& word) {
    if (word == u"seek:+5") return kSeekSeconds;
    return word == u"seek:-5" ? -kSeekSeconds : 0;
}

}  // namespace

MusicCommands::MusicCommands(NotchModel& model, Clock& clock, MainLoop& loop, NowPlaying& nowPlaying, Players& players,
                             MediaKeys& keys)
    : model_(model), clock_(clock), loop_(loop), nowPlaying_(nowPlaying), players_(players), keys_(keys) {}

void MusicCommands::runMusicCommand(const QString& word) {
    const auto& source = nowPlaying_.musicSource();
    if (!source) return;
    isBrowser(*source) ? tellBrowser(word) : tellPlayer(word);
}

void MusicCommands::tellPlayer(const QString& word) {
    const QString player = *nowPlaying_.musicSource();
    const Command* command = commandFor(word);
    const double seek = seekFor(word);
    if (command)
        players_.run(player, command->verb);
    else if (seek != 0)
        players_.seek(player, seek);
    else
        return;
    model_.markActivity(clock_.uptime());
    if (command) refreshAfter(kPlayerRefresh);
}

// Media keys cannot seek.
void MusicCommands::tellBrowser(const QString& word) {
    const QString browser = *nowPlaying_.musicSource();
    if (!keys_.isTrusted(browser)) return askForAccessibility();
    const Command* command = commandFor(word);
    if (!command) return;
    keys_.press(browser, command->key);
    model_.markActivity(clock_.uptime());
    refreshAfter(kBrowserRefresh);
}

void MusicCommands::refreshAfter(double seconds) {
    const int number = refreshes_++;
    pendingRefreshes_[number] = loop_.after(seconds, [this, number] {
        const auto finished = pendingRefreshes_.extract(number);
        nowPlaying_.musicTickFired();
    });
}

void MusicCommands::askForAccessibility() {
    if (std::exchange(askedForAccessibility_, true)) return;
    Alert question{
        u"Controlling a browser needs one permission"_s,
        u"Glimmet reads what your browser is playing with no permission at all, which is why the track name "
        "is showing.\n\nSkipping and pausing it is different: macOS only lets an app press the media keys if "
        "it is allowed under Accessibility. Spotify and Apple Music do not need this, and nothing else in "
        "Glimmet does either.\n\nAdd Glimmet under Privacy & Security, then Accessibility, and the buttons "
        "will work."_s,
        {u"Open Accessibility settings"_s, u"Not now"_s},
        lifetime_.guard([this](int button) {
            if (button == 0) openSettings();
        })};
    alert(std::move(question));
}

void MusicCommands::scrollSeek(double deltaY, bool isOverNotch) {
    if (!model_.musicPlaying || !model_.hovering || !isOverNotch) {
        scrollAccum_ = 0;
        return;
    }
    scrollAccum_ += deltaY;
    const double now = clock_.uptime();
    if (std::abs(scrollAccum_) <= kSeekThreshold || now - lastSeek_ <= kSeekPause) return;
    lastSeek_ = now;
    runMusicCommand(scrollAccum_ < 0 ? u"seek:+5"_s : u"seek:-5"_s);
    scrollAccum_ = 0;
}
