#include <gtest/gtest.h>

#include "app/Commands.h"
#include "support/Creature.h"

using namespace Qt::StringLiterals;

namespace {

struct CommandsFixture : CreatureFixture {
    MemoryWorkspace workspace;
    std::string flipped;
    const QList<Switch> switches{{u"Music"_s, u"music"_s, [this] { flipped += "on "; }, [this] { flipped += "off "; }},
                                 {u"Unborn"_s, u"unborn"_s, {}, {}}};
    Commands commands{m, shelf, clock, preferences, workspace, switches};

    /// Of the first entry whose title contains this.
    MenuItem item(const char* title) {
        for (const MenuItem& one : commands.menu()) {
            if (one.title.contains(QString::fromUtf8(title))) return one;
        }
        ADD_FAILURE() << "no item " << title;
        return {};
    }
};

TEST(Menu, FollowsTheState) {
    CommandsFixture f;
    for (const char* unborn : {"Unborn", "Check for updates…"}) EXPECT_FALSE(f.item(unborn).action) << unborn;
    EXPECT_TRUE(f.item("Critter").checked);
    f.m.asleep = true;
    f.commands.pick(u"weather"_s);  // not a toy's name
    EXPECT_TRUE(f.m.asleep && f.m.toy == Toy::critter);
    f.item("Weather").action();
    EXPECT_FALSE(f.m.asleep);
    EXPECT_TRUE(f.item("Weather").checked && !f.item("Critter").checked);
    f.m.updateAvailable = u"9.9"_s;
    f.item("v9.9 is out · get it").action();
    EXPECT_EQ(f.workspace.opened.value(0).scheme(), u"https"_s);
    f.item("Hide Glimmet").action();
    EXPECT_TRUE(f.m.hidden);
    f.item("Show Glimmet").action();
    EXPECT_FALSE(f.m.hidden);
    const auto timers = f.item("Hold a timer").submenu;
    ASSERT_EQ(timers.size(), 3);
    EXPECT_EQ(timers[1].title, u"15 minutes"_s);
    timers[1].action();
    EXPECT_EQ(f.m.timers->first().minutes, 15);
    bool quits = false;
    f.commands.quit = [&] { quits = true; };
    f.item("Quit Glimmet").action();
    EXPECT_TRUE(quits);
}

TEST(Menu, ASwitchIsFlippedAndItsStateOutlivesTheProgram) {
    CommandsFixture f;
    f.commands.startSwitches();
    EXPECT_FALSE(f.item("Music").checked);
    f.item("Music").action();
    EXPECT_TRUE(f.item("Music").checked);
    f.preferences.setBoolean(u"unborn"_s, true);
    f.commands.startSwitches();
    f.item("Music").action();
    f.commands.startSwitches();
    EXPECT_EQ(f.flipped, "on on off ");
}

TEST(Menu, CountsTheMinutesOfQuiet) {
    CommandsFixture f;
    f.item("Shh for an hour").action();
    f.loop.advance(0.5);
    for (const auto& [seconds, minutes] : {std::pair(0.5, 59), {29, 59}, {3511, 0}}) {
        f.loop.advance(seconds);
        EXPECT_EQ(f.item("left").title, u"Wake up (%1 min left)"_s.arg(minutes));
    }
    f.item("left").action();
    EXPECT_EQ(f.m.glanceCount, 1);
    f.item("Shh for an hour");
}

}  // namespace
