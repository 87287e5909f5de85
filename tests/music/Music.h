#pragma once

#include <gtest/gtest.h>

#include "music/Applications.h"
#include "music/MusicCommands.h"
#include "support/ManualLoop.h"
#include "support/MemoryMusic.h"
#include "support/MemoryPorts.h"

/// The whole feature in virtual time. The worker makes every cover a grey pixel.
struct MusicFixture {
    MusicFixture() { worker.answer = {{"width", 1}, {"height", 1}, {"pixels", "gICA/w=="}}; }

    ManualClock clock;
    ManualLoop loop{clock};
    MemoryPreferences preferences;
    MemoryPlayers players;
    MemoryKeys keys;
    MemoryHttp http;
    MemoryWorker worker;
    InlineQueue queue;
    NotchModel m;
    Artwork artwork{loop, http, preferences, worker, queue};
    NowPlaying music{m, loop, players, artwork};
    MusicCommands commands{m, clock, loop, music, players, keys};

    /// A running player with this track, empty for none; without one it does not answer.
    void play(const QString& player, std::optional<QString> title, const QUrl& cover = {}) {
        players.running.insert(player);
        players.tracks[player].reset();
        if (title) players.tracks[player] = Players::Track{*title, cover};
    }
    void open(const QString& browser, const QStringList& titles) {
        players.running.insert(browser);
        players.open[browser].emplace();
        for (const QString& title : titles) players.open[browser]->append({title, {}, false});
    }
    /// Lets time pass; browsers answer at once.
    void pass(double seconds) {
        for (double end = clock.uptime() + seconds; clock.uptime() < end - 1e-6;) {
            loop.advance(std::min(end - clock.uptime(), 0.1));
            players.answer();
        }
    }
    void change() {
        players.onChange();
        players.answer();
    }
    /// What is shown: the source and its track.
    QString shown() const {
        EXPECT_EQ(m.musicTrack->has_value(), m.musicPlaying);
        return music.musicSource().value_or("none") + ": " + m.musicTrack->value_or("none");
    }
    /// The browsers that were asked since the last call.
    QStringList scanned() {
        QStringList names = std::exchange(players.asked, {});
        names.removeIf([](const QString& name) { return !isBrowser(name); });
        return names;
    }
};

inline const QString kNothing = "none: none";
