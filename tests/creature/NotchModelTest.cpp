#include <gtest/gtest.h>

#include "creature/NotchModel.h"
#include "support/Creature.h"

namespace {

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
        f.m.items = QList<QUrl>(c.files);
        f.m.bites = QList<Bite>(c.notes, Bite::note({}));
        EXPECT_EQ(QSizeF(f.m.shapeWidth(), f.m.shapeHeight()), c.shape) << "row " << &c - cases;
    }
}

TEST(NotchModel, IsSleepyAtNightOrOnALowBattery) {
    const struct {
        int hour, minute;
        double battery;
        bool charging, isSleepy;
    } cases[] = {{22, 59, 1, false, false},  {23, 0, 1, false, true},   {0, 0, 1, true, true},
                 {5, 59, 1, false, true},    {6, 0, 1, false, false},   {12, 0, 0.2, false, false},
                 {12, 0, 0.19, false, true}, {12, 0, 0.19, true, false}};
    for (const auto& c : cases) {
        CreatureFixture f;
        f.clock.setTimeOfDay(c.hour, c.minute);
        f.m.battery = c.battery;
        f.m.charging = c.charging;
        EXPECT_EQ(f.m.isSleepy(f.clock), c.isSleepy) << "row " << &c - cases;
    }
}

TEST(NotchModel, AnnouncesBeforeTheChangeAndReportsItWithTheInnermostAnimation) {
    CreatureFixture f;
    std::string log;
    const auto state = [&] { return f.m.asleep ? "asleep, " : "awake, "; };
    const auto will = f.m.objectWillChange.subscribe([&] { log += std::string("will: ") + state(); });
    const auto did = f.m.objectDidChange.subscribe([&](const std::optional<Animation>& how) {
        log += how == Animation::easeOut(1)   ? "outer: "
               : how == Animation::easeOut(2) ? "inner: "
               : how                          ? "?"
                                              : "jumped: ";
        log += state();
    });
    f.m.asleep = true;
    f.m.withAnimation(Animation::easeOut(1), [&] {
        f.m.withAnimation(Animation::easeOut(2), [&] { ++f.m.boopCount; });
        f.m.asleep = false;
        f.m.boopCount = 7;
    });
    f.m.withAnimation(Animation::easeOut(3), [] {});
    EXPECT_EQ(log,
              "will: awake, jumped: asleep, will: asleep, inner: asleep, will: asleep, will: awake, outer: awake, ");
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
