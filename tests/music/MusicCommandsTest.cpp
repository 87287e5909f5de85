#include "music/Music.h"

namespace {

using Key = MediaKeys::Key;

/// With a player that plays, and the pointer on the notch.
struct CommandFixture : MusicFixture {
    explicit CommandFixture(const QString& source = "Music") {
        if (source == "Music")
            play(source, "A — a");
        else
            open(source, {"A - Deezer"});
        music.startMusicWatch();
        change();
        m.hovering = true;
        commands.alert = [this](const Alert& shown) { alerts.append(shown); };
        commands.openSettings = [this] { ++settings; };
    }
    QList<Alert> alerts;
    int settings = 0;
};

TEST(MusicCommands, ReachThePlayerAndShowSoon) {
    const struct {
        const char *word, *told;
        bool refreshes;
    } cases[] = {{"playpause", "Music playpause", true},     {"next", "Music next track", true},
                 {"previous", "Music previous track", true}, {"seek:+5", "Music seek 5", false},
                 {"seek:-5", "Music seek -5", false},        {"stop", "", false}};
    for (const auto& [word, told, refreshes] : cases) {
        CommandFixture f;
        f.m.asleep = true;
        f.players.asked.clear();
        f.commands.runMusicCommand(word);
        EXPECT_EQ(f.players.told.join(' '), told) << word;
        EXPECT_EQ(f.m.asleep, !*told) << word;
        f.loop.advance(0.39);
        EXPECT_TRUE(f.players.asked.isEmpty()) << word;
        f.loop.advance(0.02);
        EXPECT_EQ(f.players.asked.size(), refreshes ? 1 : 0) << word;
    }
    CommandFixture f;
    f.music.stopMusicWatch();
    f.commands.runMusicCommand("next");
    EXPECT_TRUE(f.players.told.isEmpty()) << "nothing is playing";
}

TEST(MusicCommands, PressMediaKeysForABrowser) {
    CommandFixture f("Safari");
    for (const char* word : {"playpause", "next", "previous", "seek:+5", "stop"}) f.commands.runMusicCommand(word);
    const QString safari = "Safari";
    EXPECT_EQ(f.keys.pressed,
              (QList<std::pair<QString, Key>>{{safari, Key::playPause}, {safari, Key::next}, {safari, Key::previous}}));
    f.open(safari, {});
    f.pass(0.89);
    EXPECT_TRUE(f.m.musicPlaying);
    f.pass(0.02);
    EXPECT_FALSE(f.m.musicPlaying) << "the third of three ticks is the browsers'";
}

TEST(MusicCommands, ExplainAMissingPermissionOnce) {
    CommandFixture f("Safari");
    f.keys.trusted = false;
    for (const char* word : {"seek:-5", "next"}) f.commands.runMusicCommand(word);
    ASSERT_EQ(f.alerts.size(), 1);
    EXPECT_EQ(f.alerts[0].buttons, (QStringList{"Open Accessibility settings", "Not now"}));
    EXPECT_TRUE(f.alerts[0].informative.contains("showing.\n\nSkipping"));
    f.alerts[0].answered(1);
    EXPECT_EQ(f.settings, 0);
    f.alerts[0].answered(0);
    EXPECT_EQ(f.settings, 1);
    f.keys.trusted = true;
    f.commands.runMusicCommand("next");
    EXPECT_EQ(f.keys.pressed.size(), 1);
}

TEST(ScrollSeek, TakesNinePointsAndPauses) {
    CommandFixture f;
    const auto scroll = [&f](double points, bool isOver = true) {
        f.commands.scrollSeek(points, isOver);
        return f.players.told.size();
    };
    EXPECT_EQ(scroll(9), 0);
    EXPECT_EQ(scroll(-9), 0) << "back again";
    scroll(-9);
    EXPECT_EQ(scroll(-0.1), 1);
    EXPECT_EQ(f.players.told.last(), "Music seek 5");
    f.loop.advance(0.2);
    EXPECT_EQ(scroll(30), 1) << "too soon";
    f.loop.advance(0.1);
    EXPECT_EQ(scroll(0), 2) << "what was scrolled meanwhile counts";
    EXPECT_EQ(f.players.told.last(), "Music seek -5");
    f.loop.advance(1);
    scroll(8);
    scroll(8, false);
    EXPECT_EQ(scroll(8), 2) << "leaving the notch forgets";
    f.m.hovering = false;
    scroll(20);
    f.m.hovering = true;
    EXPECT_EQ(scroll(8), 2);
    f.m.musicPlaying = false;
    EXPECT_EQ(scroll(20), 2);
}

}  // namespace
