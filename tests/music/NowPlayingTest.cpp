#include "music/Music.h"
#include "music/TabTitle.h"

namespace {

TEST(NowPlaying, AsksThePlayersInOrderAtEachTick) {
    MusicFixture f;
    f.play("Music", "B — b");
    f.music.startMusicWatch();
    EXPECT_EQ(f.shown(), "Music: B — b");
    EXPECT_EQ(f.players.asked, QStringList{"Music"}) << "what does not run is not asked";
    f.play("Spotify", "A — a");
    f.players.asked.clear();
    f.pass(3.9);
    EXPECT_EQ(f.shown(), "Music: B — b");
    f.pass(0.2);
    EXPECT_EQ(f.shown(), "Spotify: A — a");
    EXPECT_EQ(f.players.asked, QStringList{"Spotify"}) << "one that plays hides the other";
    f.play("Spotify", "");
    f.play("Music", "");
    f.pass(4);
    EXPECT_EQ(f.shown(), kNothing);
}

TEST(NowPlaying, AChangeShowsAtOnceUntilItIsSwitchedOff) {
    MusicFixture f;
    f.open("Arc", {"Song - Deezer"});
    f.music.startMusicWatch();
    EXPECT_EQ(f.shown(), kNothing);
    f.change();
    EXPECT_EQ(f.shown(), "Arc: Song");
    f.open("Arc", {"Next - Deezer"});
    f.players.onChange();
    f.music.stopMusicWatch();
    f.players.answer();
    f.change();
    f.pass(60);
    EXPECT_EQ(f.shown(), kNothing) << "not even an answer that was on its way";
    EXPECT_TRUE(f.http.requests.isEmpty()) << "nor is the catalogue asked for a cover any more";
    EXPECT_FALSE(f.players.watching);
    f.music.startMusicWatch();
    f.change();
    EXPECT_EQ(f.shown(), "Arc: Next");
}

TEST(NowPlaying, BrowsersHaveTheirTurnEveryFourthTickOrEveryOther) {
    MusicFixture f;
    f.open("Safari", {"nothing"});
    f.music.startMusicWatch();
    QList<int> ticks;
    for (int tick = 2; tick <= 20; ++tick) {
        if (tick == 9) f.open("Safari", {"Song — Qobuz"});
        f.pass(4);
        if (!f.scanned().isEmpty()) ticks.append(tick);
        EXPECT_EQ(f.m.musicPlaying, tick >= 12 && tick < 17) << tick << ": it stays between two turns";
        if (tick == 16) f.players.running.clear();
    }
    EXPECT_EQ(ticks, (QList<int>{4, 8, 12, 14, 16})) << "one that has been closed is not asked";
}

TEST(NowPlaying, ThreeFailuresInARowEndIt) {
    MusicFixture f;
    f.open("Arc", {"Song - Deezer"});
    f.play("Spotify", std::nullopt);
    f.play("Music", "");
    f.music.startMusicWatch();
    for (int i = 0; i < 5; ++i) f.change();
    f.pass(8);
    EXPECT_TRUE(f.players.watching) << "an answer in between counts from zero";
    EXPECT_EQ(f.shown(), "Arc: Song");
    f.play("Music", std::nullopt);
    f.pass(4);
    EXPECT_EQ(f.shown(), "Arc: Song") << "two";
    f.pass(8);
    EXPECT_EQ(f.shown().section(' ', 1), "none");
    f.players.asked.clear();
    f.play("Spotify", "A — a");
    f.pass(60);
    f.music.stopMusicWatch();
    f.music.startMusicWatch();
    f.change();
    f.pass(60);
    EXPECT_TRUE(f.players.asked.isEmpty()) << "not even after off and on";
    EXPECT_FALSE(f.players.watching);
}

TEST(NowPlaying, ABrowserThatFailsIsNotAskedAgain) {
    MusicFixture f;
    f.open("Google Chrome", {});
    f.players.open["Google Chrome"].reset();
    f.open("Safari", {" - Deezer", "A - YouTube", "A - TIDAL", "B - TIDAL"});
    f.music.startMusicWatch();
    f.pass(12);
    EXPECT_EQ(f.scanned(), (QStringList{"Google Chrome", "Safari"}));
    EXPECT_EQ(f.shown(), "Safari: A");
    f.pass(16);
    EXPECT_EQ(f.scanned(), (QStringList{"Safari", "Safari"}));
    EXPECT_TRUE(f.players.watching) << "that is not a player's failure";
}

TEST(NowPlaying, PollsWaitForOneAnother) {
    MusicFixture f;
    f.open("Arc", {"A - Deezer"});
    f.music.startMusicWatch();
    f.loop.advance(16);
    EXPECT_EQ(f.scanned().size(), 1) << "the browser has not answered yet";
    f.play("Music", "B — b");
    f.players.answer();
    EXPECT_EQ(f.shown(), "Music: B — b") << "asked by the poll that waited";
}

TEST(NowPlaying, WhatPausesUnderThePointerStaysUntilItLeaves) {
    for (const QString source : {"Music", "Arc"}) {
        MusicFixture f;
        const auto play = [&](const QString& title) {
            isBrowser(source) ? f.open(source, {title + " - Deezer"}) : f.play(source, title);
            f.players.resumable.clear();
            f.change();
        };
        const auto pause = [&](const QString& title) {
            isBrowser(source) ? f.open(source, {}) : f.play(source, "");
            f.players.resumable[source] = Players::Track{isBrowser(source) ? title + " - Deezer" : title, {}};
            f.change();
        };
        f.music.startMusicWatch();
        play("A");
        f.m.hovering = true;
        f.open("Safari", {"Other - Deezer"});
        pause("A");
        f.pass(20);
        EXPECT_EQ(f.shown(), source + ": A") << "nothing else takes its place";
        EXPECT_TRUE(f.m.musicPaused);
        pause("B");
        EXPECT_EQ(f.shown(), source + ": B") << "a player goes on to the next track and stays paused";
        play("B");
        EXPECT_FALSE(f.m.musicPaused);
        pause("B");
        f.m.hovering = false;
        EXPECT_TRUE(f.m.musicPaused) << "not within the animation of leaving";
        f.loop.drain();
        EXPECT_EQ(f.shown(), kNothing);
        EXPECT_FALSE(f.m.musicPaused);
    }
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
        {"A -  TIDAL", "none"},
    };
    for (const auto& [title, track] : cases)
        EXPECT_EQ(trackInTabTitle(title).value_or("none"), track) << title.toStdString();
}

}  // namespace
