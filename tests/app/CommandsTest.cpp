#include <gtest/gtest.h>

#include "app/Commands.h"
#include "support/Creature.h"

namespace {

struct CommandsFixture : CreatureFixture {
    MemoryWorkspace workspace;
    QStringList flipped;
    Commands commands{
        m,
        shelf,
        clock,
        preferences,
        workspace,
        {{QStringLiteral("Music"), QStringLiteral("music"), [this] { flipped.append(QStringLiteral("on")); },
          [this] { flipped.append(QStringLiteral("off")); }},
         {QStringLiteral("Unborn"), QStringLiteral("unborn"), {}, {}}}};
    int quits = 0;
    CommandsFixture() {
        commands.quit = [this] { ++quits; };
    }

    QStringList titles() {
        QStringList list;
        for (const MenuItem& item : commands.menu()) list.append(item.title);
        return list;
    }
    const MenuItem item(const QString& title) {
        for (const MenuItem& one : commands.menu()) {
            if (one.title == title) return one;
        }
        ADD_FAILURE() << "no item " << title.toStdString();
        return {};
    }
};

TEST(Menu, FollowsTheState) {
    CommandsFixture f;
    for (const char* unborn : {"Unborn", "Check for updates…"})
        EXPECT_FALSE(f.item(QString::fromUtf8(unborn)).action) << unborn;
    EXPECT_TRUE(f.item(QStringLiteral("Critter")).checked);
    f.item(QStringLiteral("Weather")).action();
    EXPECT_TRUE(f.item(QStringLiteral("Weather")).checked);
    EXPECT_FALSE(f.item(QStringLiteral("Critter")).checked);
    f.m.updateAvailable = QStringLiteral("9.9");
    f.item(QStringLiteral("v9.9 is out · get it")).action();
    EXPECT_EQ(f.workspace.opened.size(), 1);
    EXPECT_EQ(f.workspace.opened.first().scheme(), QStringLiteral("https"));
    f.item(QStringLiteral("Hide Glimmet")).action();
    EXPECT_TRUE(f.m.hidden);
    f.item(QStringLiteral("Show Glimmet")).action();
    EXPECT_FALSE(f.m.hidden);
    const auto timers = f.item(QStringLiteral("Hold a timer")).submenu;
    ASSERT_EQ(timers.size(), 3);
    EXPECT_EQ(timers[1].title, QStringLiteral("15 minutes"));
    timers[1].action();
    EXPECT_EQ(f.m.timers->first().minutes, 15);
    f.item(QStringLiteral("Quit Glimmet")).action();
    EXPECT_EQ(f.quits, 1);
}

TEST(Menu, ASwitchIsFlippedAndItsStateOutlivesTheProgram) {
    CommandsFixture f;
    const QString music = QStringLiteral("Music");
    f.commands.startSwitches();
    EXPECT_FALSE(f.item(music).checked);
    f.item(music).action();
    EXPECT_TRUE(f.item(music).checked);
    f.preferences.setBoolean(QStringLiteral("unborn"), true);
    f.commands.startSwitches();
    f.item(music).action();
    f.commands.startSwitches();
    EXPECT_EQ(f.flipped, (QStringList{QStringLiteral("on"), QStringLiteral("on"), QStringLiteral("off")}));
}

TEST(Menu, CountsTheMinutesOfQuiet) {
    CommandsFixture f;
    f.item(QStringLiteral("Shh for an hour")).action();
    f.loop.advance(0.5);
    const auto left = [&](double seconds) {
        f.loop.advance(seconds);
        return f.titles().filter(QStringLiteral("left")).value(0);
    };
    EXPECT_EQ(left(0.5), QStringLiteral("Wake up (59 min left)"));
    EXPECT_EQ(left(29), QStringLiteral("Wake up (59 min left)"));
    EXPECT_EQ(left(3511), QStringLiteral("Wake up (0 min left)"));
    f.item(QStringLiteral("Wake up (0 min left)")).action();
    EXPECT_EQ(f.m.glanceCount, 1);
    EXPECT_TRUE(f.titles().contains(QStringLiteral("Shh for an hour")));
}

TEST(Commands, PickingAnUnknownToyChangesNothing) {
    CommandsFixture f;
    f.m.asleep = true;
    f.commands.pick(QStringLiteral("weather"));
    f.commands.pick(QString());
    EXPECT_EQ(f.m.toy, Toy::critter);
    EXPECT_TRUE(f.m.asleep);
    f.commands.pick(QStringLiteral("Weather"));
    EXPECT_FALSE(f.m.asleep);
}

}  // namespace
