#include <gtest/gtest.h>

#include "creature/NotchModel.h"
#include "support/Creature.h"

namespace {

QList<Bite> notes(int count) {
    QList<Bite> bites;
    for (int i = 0; i < count; ++i) bites.append(Bite::note(QString::number(i)));
    return bites;
}

void holdFiles(NotchModel& m, int count) {
    QList<QUrl> files;
    for (int i = 0; i < count; ++i) files.append(QUrl::fromLocalFile(QStringLiteral("/f%1").arg(i)));
    m.items = files;
}

TEST(NotchModel, ShapeTakesTheFirstRowThatMatches) {
    using Switch = Published<bool> NotchModel::*;
    constexpr Switch hidden = &NotchModel::hidden, drag = &NotchModel::dragNear, drop = &NotchModel::dropTargeted,
                     hover = &NotchModel::hovering, pull = &NotchModel::dragging, music = &NotchModel::musicPlaying,
                     yawn = &NotchModel::yawning, expand = &NotchModel::shelfExpanded;
    const struct {
        QSizeF notch;
        Toy toy;
        std::vector<Switch> on;
        int files, notes;
        QSizeF shape;
    } cases[] = {
        {{185, 32}, Toy::critter, {}, 0, 0, {185, 58}},
        {{210, 38}, Toy::critter, {}, 0, 0, {210, 58}},
        {{200, 38}, Toy::critter, {hidden, drag}, 3, 0, {200, 43}},
        {{185, 32}, Toy::weather, {}, 0, 0, {185, 40}},
        {{185, 32}, Toy::weather, {drag}, 0, 0, {300, 94}},
        {{185, 32}, Toy::weather, {drop}, 0, 0, {185, 40}},
        {{185, 32}, Toy::critter, {drop, hover}, 1, 0, {300, 120}},
        {{185, 32}, Toy::critter, {hover}, 0, 0, {214, 108}},
        {{185, 32}, Toy::critter, {pull}, 0, 0, {214, 108}},
        {{185, 32}, Toy::critter, {music}, 0, 0, {185, 58}},
        {{185, 32}, Toy::critter, {hover, music}, 0, 0, {300, 138}},
        {{185, 32}, Toy::critter, {hover}, 1, 0, {320, 152}},
        {{185, 32}, Toy::critter, {hover, music}, 1, 0, {320, 178}},
        {{185, 32}, Toy::critter, {}, 0, 1, {236, 74}},
        {{185, 32}, Toy::critter, {pull}, 1, 0, {236, 74}},
        {{185, 32}, Toy::critter, {yawn}, 0, 0, {185, 92}},
        {{185, 32}, Toy::critter, {yawn}, 1, 0, {236, 92}},
        {{185, 32}, Toy::critter, {hover, expand}, 5, 0, {320, 172}},
        {{185, 32}, Toy::critter, {hover, expand}, 6, 0, {320, 228}},
        {{185, 32}, Toy::critter, {hover, expand}, 6, 5, {320, 284}},
    };
    for (const auto& c : cases) {
        CreatureFixture f;
        f.m.notchSize = c.notch;
        f.m.toy = c.toy;
        for (const Switch one : c.on) f.m.*one = true;
        holdFiles(f.m, c.files);
        f.m.bites = notes(c.notes);
        EXPECT_EQ(QSizeF(f.m.shapeWidth(), f.m.shapeHeight()), c.shape) << "row " << &c - cases;
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
