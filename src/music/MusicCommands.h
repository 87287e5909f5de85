#pragma once

#include <QString>
#include <functional>
#include <limits>
#include <map>

#include "creature/NotchModel.h"
#include "music/NowPlaying.h"
#include "platform/Alert.h"
#include "platform/Lifetime.h"
#include "platform/MainLoop.h"
#include "platform/MediaKeys.h"
#include "platform/Players.h"

/// Does what the music buttons and scrolling over the notch ask for: tells the player, or presses media keys for a
/// browser. Main thread only; the references must outlive it.
class MusicCommands {
 public:
    MusicCommands(NotchModel& model, Clock& clock, MainLoop& loop, NowPlaying& nowPlaying, Players& players,
                  MediaKeys& keys);

    /// `word` is "playpause", "next", "previous", "seek:+5" or "seek:-5"; others do nothing.
    void runMusicCommand(const QString& word);
    /// The user scrolled by `deltaY` points, up being positive; `isOverNotch` tells whether on the notch.
    void scrollSeek(double deltaY, bool isOverNotch);

    /// Shows an alert to the user.
    std::function<void(Alert)> alert;
    /// Opens the settings in which the media keys may be allowed.
    std::function<void()> openSettings;

 private:
    void tellPlayer(const QString& word);
    void tellBrowser(const QString& word);
    void refreshAfter(double seconds);
    void askForAccessibility();

    NotchModel& model_;
    Clock& clock_;
    MainLoop& loop_;
    NowPlaying& nowPlaying_;
    Players& players_;
    MediaKeys& keys_;
    bool askedForAccessibility_ = false;
    double scrollAccum_ = 0;                                      // points
    double lastSeek_ = -std::numeric_limits<double>::infinity();  // Clock::uptime()
    int refreshes_ = 0;
    std::map<int, TimerHandle> pendingRefreshes_;
    Lifetime lifetime_;
};
