#pragma once

#include <QList>
#include <QString>
#include <QUrl>
#include <functional>
#include <optional>

/// The media players and browsers of the desktop, by the names in music/Applications.h. What they do is known
/// beforehand, so no question starts a program or waits for one. Main thread only.
class Players {
 public:
    enum class Verb { playPause, nextTrack, previousTrack };

    /// What a player is playing, or the tab of a browser.
    struct Track {
        QString title;        ///< "name — artist"; for a tab, what its title says
        QUrl cover = {};      ///< file, http, https or data; empty if there is none
        bool isMusic = true;  ///< surely a track, whatever a tab's title looks like
    };

    virtual ~Players() = default;

    /// Watches the desktop from now on, or stops to; nothing is known while it is off. Off at first.
    virtual void watch(bool on) = 0;
    /// Called when an answer to one of the questions below may have changed.
    std::function<void()> onChange;

    virtual bool isRunning(const QString& application) const = 0;
    /// What the player is playing; with an empty title if nothing, absent if it does not answer.
    virtual std::optional<Track> track(const QString& player) const = 0;
    /// Calls `then` later with the tabs of a browser; absent if they cannot be told.
    virtual void tabs(const QString& browser, std::function<void(std::optional<QList<Track>>)> then) = 0;
    /// What a player or browser has paused and could resume; absent if there is no such thing.
    virtual std::optional<Track> paused(const QString& application) const = 0;

    /// Tells the player to do something; it may ignore that.
    virtual void run(const QString& player, Verb verb) = 0;
    /// Moves the player's position by so many seconds.
    virtual void seek(const QString& player, double seconds) = 0;
};
