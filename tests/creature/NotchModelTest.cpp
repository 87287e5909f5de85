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
        f.clock.setNow({c.hour * 3600.0 + c.minute * 60.0});
        f.m.battery = c.battery;
        f.m.charging = c.charging;
        EXPECT_EQ(f.m.isSleepy(f.clock), c.isSleepy) << "row " << &c - cases;
    }
}

TEST(NotchModel, AnnouncesBeforeTheChangeAndReportsItWithTheInnermostAnimation) {
    CreatureFixture f;
    const Animation outer = Animation::easeOut(1), inner = Animation::easeOut(2);
    std::vector<int> before, after;
    std::vector<std::optional<Animation>> changes;
    const auto will = f.m.objectWillChange.subscribe([&] { before.push_back(f.m.boopCount.get()); });
    const auto did = f.m.objectDidChange.subscribe([&](const std::optional<Animation>& how) {
        after.push_back(f.m.boopCount.get());
        changes.push_back(how);
    });
    f.m.boopCount = 1;
    f.m.withAnimation(outer, [&] {
        f.m.withAnimation(inner, [&] { f.m.boopCount = 2; });
        f.m.boopCount = 3;
        f.m.boopCount = 4;
    });
    f.m.withAnimation(outer, [] {});
    EXPECT_EQ(before, (std::vector{0, 1, 2, 3}));
    EXPECT_EQ(after, (std::vector{1, 2, 4}));
    EXPECT_EQ(changes, (std::vector<std::optional<Animation>>{std::nullopt, inner, outer}));
}

TEST(NotchModel, DeliversThroughTheLoopUntilDropped) {
    CreatureFixture f;
    std::vector<double> seen;
    auto subscription = f.m.slideX.deliver(f.loop, [&](double x) { seen.push_back(x); });
    f.m.slideX = 3.0;
    EXPECT_TRUE(seen.empty());
    f.loop.drain();
    f.m.slideX = 4.0;
    subscription.reset();
    f.loop.drain();
    EXPECT_EQ(seen, (std::vector<double>{0, 3}));
}

}  // namespace
