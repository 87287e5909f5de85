#include "music/Music.h"
#include "music/TabTitle.h"

namespace {

TEST(NowPlaying, AsksThePlayersInOrderAtEachTick) {
    MusicFixture f;
    f.play("Music", "B — b");
    f.music.startMusicWatch();
    EXPECT_EQ(f.track(), "B — b");
    EXPECT_EQ(f.players.asked, QStringList{"Music"}) << "what does not run is not asked";
    f.play("Spotify", "A — a");
    f.players.asked.clear();
    f.loop.advance(3.9);
    EXPECT_EQ(f.track(), "B — b");
    f.loop.advance(0.2);
    EXPECT_EQ(f.track(), "A — a");
    EXPECT_EQ(f.source(), "Spotify");
    EXPECT_EQ(f.players.asked, QStringList{"Spotify"}) << "one that plays hides the other";
    f.play("Spotify", "");
    f.play("Music", "");
    f.loop.advance(4);
    EXPECT_EQ(f.track() + f.source(), "nonenone");
    EXPECT_FALSE(f.m.musicPlaying);
}

TEST(NowPlaying, AChangeShowsAtOnce) {
    MusicFixture f;
    f.open("Arc", {"Song - Deezer"});
    f.music.startMusicWatch();
    EXPECT_EQ(f.track(), "none");
    f.players.onChange();
    EXPECT_EQ(f.track(), "Song");
    f.loop.advance(4.1 * 3);  // the ticks 2 to 4
    f.open("Arc", {"Next - Deezer"});
    f.players.onChange();
    EXPECT_EQ(f.track(), "Next");
    f.music.stopMusicWatch();
    EXPECT_FALSE(f.players.watching || f.m.musicPlaying || f.m.musicTrack->has_value());
    EXPECT_EQ(f.source(), "none");
    f.players.onChange();
    f.loop.advance(60);
    EXPECT_EQ(f.track(), "none");
}

TEST(NowPlaying, BrowsersHaveTheirTurnEveryFourthTickOrEveryOther) {
    MusicFixture f;
    f.open("Safari", {"nothing"});
    f.music.startMusicWatch();
    QList<int> ticks;
    for (int tick = 2; tick <= 20; ++tick) {
        if (tick == 9) f.open("Safari", {"Song — Qobuz"});
        f.players.onChange = nullptr;
        f.loop.advance(4);
        if (!f.scanned().isEmpty()) ticks.append(tick);
        EXPECT_EQ(f.m.musicPlaying, tick >= 12 && tick < 17) << tick << ": it stays between two turns";
        if (tick == 16) f.players.running.clear();
    }
    EXPECT_EQ(ticks, (QList<int>{4, 8, 12, 14, 16})) << "one that has been closed is not asked";
}

TEST(NowPlaying, FailuresEndIt) {
    MusicFixture f;
    f.play("Spotify", std::nullopt);
    f.play("Music", std::nullopt);
    f.music.startMusicWatch();
    f.play("Music", "");
    f.loop.advance(4);
    EXPECT_TRUE(f.players.watching) << "an answer in between counts from zero";
    f.play("Music", std::nullopt);
    f.loop.advance(4);
    f.m.musicTrack = "stale";
    f.loop.advance(4);
    f.players.asked.clear();
    f.play("Spotify", "A — a");
    f.loop.advance(60);
    f.music.stopMusicWatch();
    f.music.startMusicWatch();
    f.players.onChange();
    f.loop.advance(60);
    EXPECT_TRUE(f.players.asked.isEmpty()) << "not even after off and on";
    EXPECT_EQ(f.track(), "none");
    EXPECT_FALSE(f.players.watching);
}

TEST(NowPlaying, ABrowserThatFailsIsNotAskedAgain) {
    MusicFixture f;
    f.open("Google Chrome", {});
    f.players.open["Google Chrome"].reset();
    f.open("Safari", {" - Deezer", "A - YouTube", "A - TIDAL", "B - TIDAL"});
    f.music.startMusicWatch();
    f.loop.advance(12);
    EXPECT_EQ(f.scanned(), (QStringList{"Google Chrome", "Safari"}));
    EXPECT_EQ(f.track(), "A");
    f.loop.advance(16);
    EXPECT_FALSE(f.scanned().contains("Google Chrome"));
    EXPECT_TRUE(f.players.watching) << "that is not a player's failure";
}

TEST(NowPlaying, PollsWaitForOneAnother) {
    MusicFixture f;
    f.players.isSlow = true;
    f.open("Arc", {"A - Deezer"});
    f.music.startMusicWatch();
    f.loop.advance(16);
    EXPECT_EQ(f.scanned().size(), 1) << "the browser has not answered yet";
    f.play("Music", "B — b");
    f.players.answer();
    EXPECT_EQ(f.track(), "B — b") << "asked by the poll that waited";
    f.players.tracks["Music"] = "";
    f.loop.advance(4.0 * 7);
    f.music.stopMusicWatch();
    f.players.answer();
    EXPECT_EQ(f.track(), "none") << "an answer from before it was switched off";
}

TEST(NowPlaying, WhatPausesUnderThePointerStaysUntilItLeaves) {
    MusicFixture f;
    f.play("Music", "A — a");
    f.music.startMusicWatch();
    f.m.hovering = true;
    f.play("Music", "");
    f.players.paused.insert("Music");
    f.players.onChange();
    EXPECT_EQ(f.track(), "A — a");
    EXPECT_TRUE(f.m.musicPlaying && f.m.musicPaused);
    f.commands.runMusicCommand("playpause");
    EXPECT_EQ(f.players.told, QStringList{"Music playpause"});
    f.play("Music", "A — a");
    f.players.onChange();
    EXPECT_FALSE(f.m.musicPaused);
    f.play("Music", "");
    f.loop.advance(4);
    f.m.hovering = false;
    EXPECT_FALSE(f.m.musicPlaying || f.m.musicPaused);
    EXPECT_EQ(f.track() + f.source(), "nonenone");
}

TEST(TabTitle, GivesWhatAMusicSiteIsPlaying) {
    const QString soundCloud = " | Listen online for free on SoundCloud";
    const QPair<QString, QString> cases[] = {
        {"Song Name - YouTube Music", "Song Name"},
        {"Song Name - YouTube", "none"},
        {"Artist - Song | Free Listening on SoundCloud", "Artist - Song"},
        {"(1) Song" + soundCloud + " and more", "(1) Song"},
        {"  " + soundCloud, "none"},
        {" - Deezer", "none"},
        {"\tA · B — Spotify \t", "A · B"},
        {"A - Apple Music | Bandcamp", "A - Apple Music"},
        {"A • Qobuz", "A"},
        {"A – TIDAL", "A"},
        {"A -  TIDAL", "none"},
        {"A - tidal", "none"},
        {"Deezer", "none"},
        {"", "none"},
    };
    for (const auto& [title, track] : cases)
        EXPECT_EQ(trackInTabTitle(title).value_or("none"), track) << title.toStdString();
}

}  // namespace
