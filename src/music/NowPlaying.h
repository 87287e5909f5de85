#pragma once

#include <QSet>
#include <QString>
#include <optional>

#include "creature/NotchModel.h"
#include "music/Artwork.h"
#include "platform/Lifetime.h"
#include "platform/MainLoop.h"
#include "platform/Players.h"

/// Finds out what is playing: the two players first, then the tabs of the browsers, and puts it into the model. Every
/// four seconds, and at once when something has changed. Main thread only; the references must outlive it.
class NowPlaying {
 public:
    NowPlaying(NotchModel& model, MainLoop& loop, Players& players, Artwork& artwork);
    ~NowPlaying();

    void startMusicWatch();
    /// Forgets what is playing.
    void stopMusicWatch();
    /// Asks for what is playing; does nothing while the watch is off.
    void musicTickFired();

    /// The name of the player or browser whose track is shown; absent if none is.
    const std::optional<QString>& musicSource() const { return musicSource_; }

 private:
    struct Result {
        QString source, track;
        QUrl cover;
        bool isPaused = false;
    };
    enum class Cause { tick, change };

    void changed();
    void poll(Cause cause);
    void pollNowPlaying(Cause cause);
    std::optional<Result> askPlayers(Cause cause);
    /// What has paused under the pointer.
    std::optional<Result> heldTrack() const;
    bool browsersAreDue(Cause cause) const;
    /// Goes on with the browser at this place of the list.
    void askBrowsers(qsizetype index);
    void finish(const std::optional<Result>& result);
    /// Starts the next poll that waits.
    void goOn();
    void applyNowPlaying(const std::optional<Result>& result);
    void findArtwork(const Result& result);
    void stopMusicPoll();
    /// Stops asking, and drops the answers that are on their way.
    void endPolls();

    NotchModel& model_;
    MainLoop& loop_;
    Players& players_;
    Artwork& artwork_;
    TimerHandle musicTimer_;
    std::optional<QString> musicSource_;
    QUrl seenCover_;   // where the artwork was looked for
    int lookups_ = 0;  // of artwork
    TimerHandle artworkDelay_;
    int musicFails_ = 0;  // players in a row that did not answer
    int musicTick_ = 0;   // since the program started
    QSet<QString> deniedBrowsers_;
    bool polling_ = false;
    QList<Cause> waiting_;  // polls behind the one under way
    std::optional<Lifetime> polls_{std::in_place};
    Subscription pointerLeaves_;
    Lifetime lifetime_;
};
