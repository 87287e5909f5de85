#pragma once

#include <gtest/gtest.h>

#include "music/Applications.h"
#include "music/MusicCommands.h"
#include "support/ManualLoop.h"
#include "support/MemoryMusic.h"
#include "support/MemoryPorts.h"

/// The whole feature in virtual time. The worker makes every cover a grey pixel.
struct MusicFixture {
    MusicFixture() {
        m.hovering = false;
        worker.answer = {{"width", 1}, {"height", 1}, {"pixels", "gICA/w=="}};
    }

    ManualClock clock;
    ManualLoop loop{clock};
    MemoryPreferences preferences;
    MemoryPlayers players;
    MemoryKeys keys;
    MemoryHttp http;
    MemoryWorker worker;
    InlineQueue queue;
    NotchModel m;
    Artwork artwork{loop, players, http, preferences, worker, queue};
    NowPlaying music{m, loop, players, artwork};
    MusicCommands commands{m, clock, loop, music, players, keys};

    QString track() const { return m.musicTrack->value_or("none"); }
    /// A running player with this track; without one it does not play.
    void play(const QString& player, std::optional<QString> track) {
        players.running.insert(player == "Spotify" ? "com.spotify.client" : "com.apple.Music");
        players.tracks[player] = track;
    }
    void open(const QString& browser, const QStringList& titles) {
        players.running.insert(identifierOf(browser));
        players.open[browser].emplace();
        for (const QString& title : titles) players.open[browser]->append({title, false});
    }
    QString source() const { return music.musicSource().value_or("none"); }
    /// The browsers that were asked since the last call.
    QStringList scanned() {
        QStringList names;
        for (const QString& name : std::exchange(players.asked, {})) {
            if (isBrowser(name)) names.append(name);
        }
        return names;
    }

 private:
    static bool isBrowser(const QString& name) { return !identifierOf(name).isEmpty(); }
};
