#pragma once

#include <QList>
#include <QString>
#include <QUrl>
#include <functional>
#include <optional>

/// The media players and browsers of the desktop, by the display names of `playerApps` and `browserApps` (see
/// music/Applications.h). Everything is known beforehand, so no question waits for another program, starts one, or
/// costs more than a look. Main thread only.
class Players {
 public:
    enum class Verb { playPause, nextTrack, previousTrack };

    /// A tab of a browser, or what its media entry plays.
    struct Tab {
        QString title;
        bool isMusic = false;  ///< surely music, whatever its title looks like
    };

    virtual ~Players() = default;

    /// Watches the desktop from now on, or stops to; nothing is known while it is off. Off at first.
    virtual void watch(bool on) = 0;
    /// Called when an answer to one of the questions below may have changed.
    std::function<void()> onChange;

    virtual bool isRunning(const QString& application) const = 0;
    /// "name — artist" of what the player is playing; empty if it plays nothing, absent if it does not answer.
    virtual std::optional<QString> track(const QString& player) = 0;
    /// Calls `then` later with the tabs of a browser; absent if they cannot be told.
    virtual void tabs(const QString& browser, std::function<void(std::optional<QList<Tab>>)> then) = 0;
    /// Whether the player or browser has paused and could go on.
    virtual bool isPaused(const QString& application) const = 0;
    /// The address of the cover of its current track (file, http, https or data); empty if there is none.
    virtual QUrl cover(const QString& application) const = 0;

    /// Tells the player to do something; it may ignore that.
    virtual void run(const QString& player, Verb verb) = 0;
    /// Moves the player's position by so many seconds.
    virtual void seek(const QString& player, double seconds) = 0;
};
