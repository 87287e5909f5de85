#include <gtest/gtest.h>

#include "creature/NotchModel.h"
#include "support/Creature.h"

namespace {

QList<Bite> notes(int count) {
    QList<Bite> bites;
    for (int i = 0; i < count; ++i) bites.append(Bite::note(QString::number(i)));
    return bites;
}

struct ShapeCase {
    const char* name;
    std::function<void(NotchModel&)> arrange;
    double width, height;
};

void holdFiles(NotchModel& m, int count) {
    QList<QUrl> files;
    for (int i = 0; i < count; ++i) files.append(QUrl::fromLocalFile(QStringLiteral("/f%1").arg(i)));
    m.items = files;
}

TEST(NotchModel, ShapeTakesTheFirstRowThatMatches) {
    const std::vector<ShapeCase> cases{
        {"resting", [](NotchModel&) {}, 185, 58},
        {"wide notch",
         [](NotchModel& m) {
             m.notchSize = {210, 38};
         },
         210, 58},
        {"hidden beats all",
         [](NotchModel& m) {
             m.notchSize = {200, 38};
             m.hidden = true;
             m.dragNear = true;
             holdFiles(m, 3);
         },
         200, 43},
        {"weather", [](NotchModel& m) { m.toy = Toy::weather; }, 185, 40},
        {"weather, drag near",
         [](NotchModel& m) {
             m.toy = Toy::weather;
             m.dragNear = true;
         },
         300, 94},
        {"weather, drop over it",
         [](NotchModel& m) {
             m.toy = Toy::weather;
             m.dropTargeted = true;
         },
         185, 40},
        {"drop",
         [](NotchModel& m) {
             m.dropTargeted = true;
             holdFiles(m, 1);
             m.hovering = true;
         },
         300, 120},
        {"hover", [](NotchModel& m) { m.hovering = true; }, 214, 108},
        {"dragging", [](NotchModel& m) { m.dragging = true; }, 214, 108},
        {"music alone", [](NotchModel& m) { m.musicPlaying = true; }, 185, 58},
        {"hover with music",
         [](NotchModel& m) {
             m.hovering = true;
             m.musicPlaying = true;
         },
         300, 138},
        {"hover, held",
         [](NotchModel& m) {
             m.hovering = true;
             holdFiles(m, 1);
         },
         320, 152},
        {"hover, held, music",
         [](NotchModel& m) {
             m.hovering = true;
             holdFiles(m, 1);
             m.musicPlaying = true;
         },
         320, 178},
        {"held", [](NotchModel& m) { m.addTimer(5); }, 236, 74},
        {"held, dragging",
         [](NotchModel& m) {
             holdFiles(m, 1);
             m.dragging = true;
         },
         236, 74},
        {"yawn", [](NotchModel& m) { m.yawning = true; }, 185, 92},
        {"yawn, held",
         [](NotchModel& m) {
             m.yawning = true;
             holdFiles(m, 1);
         },
         236, 92},
        {"expanded 5",
         [](NotchModel& m) {
             m.hovering = true;
             m.shelfExpanded = true;
             holdFiles(m, 5);
         },
         320, 172},
        {"expanded 6",
         [](NotchModel& m) {
             m.hovering = true;
             m.shelfExpanded = true;
             holdFiles(m, 6);
         },
         320, 228},
        {"expanded 11",
         [](NotchModel& m) {
             m.hovering = true;
             m.shelfExpanded = true;
             holdFiles(m, 6);
             m.bites = notes(5);
         },
         320, 284},
    };
    for (const ShapeCase& c : cases) {
        CreatureFixture f;
        c.arrange(f.m);
        EXPECT_EQ(f.m.shapeWidth(), c.width) << c.name;
        EXPECT_EQ(f.m.shapeHeight(), c.height) << c.name;
    }
}

TEST(NotchModel, IsSleepyAtNightOrOnALowBattery) {
    CreatureFixture f;
    const auto sleepyAt = [&](int hour, int minute) {
        f.clock.setTimeOfDay(hour, minute);
        return f.m.isSleepy();
    };
    EXPECT_FALSE(sleepyAt(22, 59));
    EXPECT_TRUE(sleepyAt(23, 0));
    EXPECT_TRUE(sleepyAt(0, 0));
    EXPECT_TRUE(sleepyAt(5, 59));
    EXPECT_FALSE(sleepyAt(6, 0));
    f.m.battery = 0.2;
    EXPECT_FALSE(sleepyAt(12, 0));
    f.m.battery = 0.19;
    EXPECT_TRUE(sleepyAt(12, 0));
    f.m.charging = true;
    EXPECT_FALSE(sleepyAt(12, 0));
}

TEST(NotchModel, YawnsForASecondAndAHalf) {
    CreatureFixture f;
    f.m.yawn();
    EXPECT_TRUE(f.m.yawning);
    f.loop.advance(1.59);
    f.m.yawn();  // during a yawn: must not make it longer
    EXPECT_TRUE(f.m.yawning);
    f.loop.advance(0.02);
    EXPECT_FALSE(f.m.yawning);
}

TEST(NotchModel, DeclinesToYawn) {
    const std::vector<std::function<void(CreatureFixture&)>> reasons{
        [](auto& f) { f.m.asleep = true; },
        [](auto& f) { f.m.toy = Toy::weather; },
        [](auto& f) { f.m.hovering = true; },
        [](auto& f) { f.m.dragNear = true; },
        [](auto& f) { f.m.quietUntil = f.clock.now() + 1; },
    };
    for (size_t i = 0; i < reasons.size(); ++i) {
        CreatureFixture f;
        reasons[i](f);
        f.m.yawn();
        EXPECT_FALSE(f.m.yawning) << i;
    }
    CreatureFixture f;
    f.m.quietUntil = f.clock.now();  // over right now
    f.m.yawn();
    EXPECT_TRUE(f.m.yawning);
}

TEST(NotchModel, ATapTakesTheFirstThingToDo) {
    CreatureFixture f;
    int focused = 0;
    f.m.onFocusBlockedTerminal = [&] { ++focused; };
    f.m.addTimer(1);
    f.m.addTimer(10);
    f.loop.advance(61);
    ASSERT_TRUE(f.m.tickTimers());
    f.m.needsYou = true;
    f.m.blockedTerminal = QStringLiteral("Terminal");
    f.m.hidden = true;
    f.m.asleep = true;

    f.m.notchTapped();
    EXPECT_FALSE(f.m.hidden);
    EXPECT_FALSE(f.m.asleep);
    EXPECT_EQ(f.m.timers->size(), 2);
    EXPECT_EQ(f.m.boopCount, 1);

    f.m.notchTapped();
    EXPECT_EQ(f.m.timers->size(), 1);
    EXPECT_EQ(f.m.timers->first().minutes, 10);
    EXPECT_EQ(f.m.boopCount, 2);

    f.m.notchTapped();
    EXPECT_EQ(focused, 1);
    EXPECT_EQ(f.m.boopCount, 2);

    f.m.blockedTerminal = QString();
    f.m.notchTapped();
    EXPECT_EQ(focused, 1);
    EXPECT_EQ(f.m.boopCount, 3);
}

TEST(NotchModel, AnnouncesBeforeTheChangeAndReportsItWithItsAnimation) {
    CreatureFixture f;
    std::vector<std::string> log;
    const auto will =
        f.m.objectWillChange.subscribe([&] { log.push_back(f.m.asleep ? "will: asleep" : "will: awake"); });
    const auto did = f.m.objectDidChange.subscribe([&](const auto& how) {
        log.push_back(std::string(how ? "animated" : "jumped") + (f.m.asleep ? ": asleep" : ": awake"));
    });
    f.m.asleep = true;
    f.m.withAnimation(Animation::easeOut(1), [&] {
        f.m.asleep = false;
        f.m.boopCount = 7;
    });
    EXPECT_EQ(log, (std::vector<std::string>{"will: awake", "jumped: asleep", "will: asleep", "will: awake",
                                             "animated: awake"}));
}

TEST(NotchModel, InnerAnimationHoldsForItsBlockOnly) {
    CreatureFixture f;
    std::vector<std::optional<Animation>> seen;
    const auto did = f.m.objectDidChange.subscribe([&](const auto& how) { seen.push_back(how); });
    f.m.withAnimation(Animation::easeOut(1), [&] {
        f.m.withAnimation(Animation::easeOut(2), [&] { ++f.m.boopCount; });
        ++f.m.boopCount;
    });
    f.m.withAnimation(Animation::easeOut(3), [] {});
    ASSERT_EQ(seen.size(), 2U);
    EXPECT_EQ(seen[0], Animation::easeOut(2));
    EXPECT_EQ(seen[1], Animation::easeOut(1));
}

TEST(NotchModel, DeliversThroughTheLoopUntilDropped) {
    CreatureFixture f;
    std::vector<double> seen;
    auto subscription = f.m.slideX.deliver(f.loop, [&](double x) { seen.push_back(x); });
    f.m.slideX = 3.0;
    EXPECT_TRUE(seen.empty());
    f.loop.drain();
    EXPECT_EQ(seen, (std::vector<double>{0, 3}));
    f.m.slideX = 4.0;
    subscription.reset();
    f.m.slideX = 5.0;
    f.loop.drain();
    EXPECT_EQ(seen.size(), 2U);
}

}  // namespace
