#include <gtest/gtest.h>

#include "creature/BehaviourEngine.h"
#include "creature/Numbers.h"
#include "support/Creature.h"

namespace {

TEST(Hovering, ZoneReachesFourPointsAboveTheScreenAndMovesWithTheSlide) {
    BehaviourFixture f;
    EXPECT_TRUE(f.engine.inHoverZone({756, 986}, 14));
    EXPECT_FALSE(f.engine.inHoverZone({756, 986.5}, 14));
    f.m.slideX = 200.0;
    EXPECT_FALSE(f.engine.inHoverZone({756, 980}, 14));
    EXPECT_TRUE(f.engine.inHoverZone({956, 980}, 14));
    // A small notch still has a zone of 185 x 40.
    f.m.slideX = 0.0;
    f.m.notchSize = {100, 20};
    f.m.hidden = true;
    EXPECT_TRUE(f.engine.inHoverZone({756 + 92.5 + 14, 982 - 54}, 14));
    EXPECT_FALSE(f.engine.inHoverZone({756, 982 - 54.5}, 14));
}

TEST(Gaze, IsPublishedOnlyForMovesThatShow) {
    BehaviourFixture f;
    const auto cursor = [&] { return f.m.cursor.get() - QPointF(756, 982); };
    f.moveTo(300, 400);
    EXPECT_EQ(cursor(), QPointF(300, -400));
    f.moveTo(301, 402);  // 3 points
    EXPECT_EQ(cursor(), QPointF(300, -400));
    f.clock.setNow({0});  // somebody sets the time
    f.moveTo(302, 402);   // 4 points
    EXPECT_EQ(cursor(), QPointF(302, -402));
    f.moveTo(340, 402, 0.03);  // too soon
    EXPECT_EQ(cursor(), QPointF(302, -402));
    f.moveTo(340, 402, 0.03);
    EXPECT_EQ(cursor(), QPointF(340, -402));
    f.moveTo(0, 60, 0.01);  // a change of hovering is always published
    EXPECT_EQ(cursor(), QPointF(0, -60));
}

TEST(Startle, NeedsSpeedNearnessAndTheCritter) {
    struct Case {
        const char* name;
        double x, elapsed;
        Toy toy;
        int startles;
    };
    for (const Case& c : std::vector<Case>{{"fast and near", 100, 0.05, Toy::critter, 1},
                                           {"slow", 100, 0.5, Toy::critter, 0},
                                           {"fast but far", 170, 0.05, Toy::critter, 0},
                                           {"weather", 100, 0.05, Toy::weather, 0}}) {
        BehaviourFixture f;
        f.m.toy = c.toy;
        f.moveTo(c.x + 300, 30, 1);
        f.moveTo(c.x, 30, c.elapsed);
        EXPECT_EQ(f.m.startleCount, c.startles) << c.name;
    }
}

TEST(Startle, WakesASleeperAndCoolsDown) {
    BehaviourFixture f;
    f.m.asleep = true;
    const auto flick = [&] {
        f.moveTo(500, 30, 0.3);
        f.moveTo(0, 30, 0.05);
    };
    flick();
    EXPECT_FALSE(f.m.asleep);
    flick();  // 0.35 s later
    EXPECT_EQ(f.m.startleCount, 1);
    f.loop.advance(0.5);
    flick();
    EXPECT_EQ(f.m.startleCount, 2);
}

/// Lets `seconds` pass with the ticks at their times.
void live(BehaviourFixture& f, double seconds) {
    const auto vitals = f.loop.every(15, [&f] { f.engine.yawnTick(); });
    const auto life = f.loop.every(4, [&f] { f.engine.lifeTick(); });
    f.loop.advance(seconds);
}

TEST(Dozing, FallsAsleepAfter22SecondsWithoutTheUserUnlessWatchedHiddenOrWeather) {
    BehaviourFixture f;
    f.clock.setNow({0});  // somebody sets the time
    f.loop.advance(22);
    f.engine.lifeTick();
    EXPECT_FALSE(f.m.asleep);
    for (Published<bool>* reason : {&f.m.hovering, &f.m.hidden}) {
        *reason = true;
        live(f, 60);
        EXPECT_FALSE(f.m.asleep);
        *reason = false;
    }
    f.m.toy = Toy::weather;
    live(f, 60);
    EXPECT_FALSE(f.m.asleep);
    f.m.toy = Toy::critter;
    f.engine.lifeTick();
    EXPECT_TRUE(f.m.asleep);
    f.engine.applicationActivated();
    EXPECT_FALSE(f.m.asleep);
    EXPECT_EQ(f.m.glanceCount, 1);
}

TEST(Stretch, ComesAfterFiftyMinutesOfWorkAndNotAgainSoon) {
    BehaviourFixture f;
    const auto ticks = f.loop.every(4, [&f] { f.engine.lifeTick(); });
    const auto work = [&](double seconds, double pause = 10) {
        for (double t = 0; t < seconds; t += pause) f.moveTo(500 + std::fmod(t, 20), 500, pause);
    };
    work(7200, 60);
    EXPECT_EQ(f.m.stretchCount, 0) << "it dozes off in every minute";
    work(2990);
    EXPECT_EQ(f.m.stretchCount, 0);
    work(30);
    EXPECT_EQ(f.m.stretchCount, 1);
    work(3270);
    EXPECT_EQ(f.m.stretchCount, 1);
    work(60);
    EXPECT_EQ(f.m.stretchCount, 2);
}

TEST(Yawns, TakeASecondAndAHalfUnlessSomethingSpeaksAgainstIt) {
    BehaviourFixture f;
    f.engine.yawn();
    f.loop.advance(1.59);
    f.engine.yawn();  // during a yawn: must not make it longer
    EXPECT_TRUE(f.m.yawning);
    f.loop.advance(0.02);
    EXPECT_FALSE(f.m.yawning);

    const std::function<void(BehaviourFixture&)> reasons[] = {
        [](auto& d) { d.m.asleep = true; },
        [](auto& d) { d.m.toy = Toy::weather; },
        [](auto& d) { d.m.hovering = true; },
        [](auto& d) { d.m.dragNear = true; },
        [](auto& d) { d.m.quietUntil = d.clock.now() + 1; },
    };
    for (const auto& arrange : reasons) {
        BehaviourFixture declines;
        arrange(declines);
        declines.engine.yawn();
        EXPECT_FALSE(declines.m.yawning) << "reason " << &arrange - reasons;
    }
    f.m.quietUntil = f.clock.now();  // over right now
    f.engine.yawn();
    EXPECT_TRUE(f.m.yawning);
}

TEST(Yawns, ComeEveryFewMinutesWhileTired) {
    BehaviourFixture f;
    f.m.battery = 0.1;
    f.m.hidden = true;  // stays awake
    const auto ticks = f.loop.every(15, [&f] { f.engine.yawnTick(); });
    int yawns = 0;
    const auto seen = f.m.yawning.willChange.subscribe([&](bool yawning) { yawns += yawning ? 1 : 0; });
    f.nextRandom = 0;
    f.loop.advance(45);
    EXPECT_EQ(yawns, 0);
    f.loop.advance(16);  // the tick at 60 s
    EXPECT_EQ(yawns, 1);
    f.loop.advance(180);
    EXPECT_EQ(yawns, 1);  // due just after 240 s, ticks come every 15 s
    f.loop.advance(15);
    EXPECT_EQ(yawns, 2);
    f.m.battery = 1.0;
    f.loop.advance(1000);
    EXPECT_EQ(yawns, 2);
}

TEST(Tap, TakesTheFirstThingToDo) {
    BehaviourFixture f;
    QStringList done;
    f.engine.clearDoneTimers = [&] {
        done.append(QStringLiteral("cleared"));
        f.shelf.clearDoneTimers();
    };
    f.engine.focusBlockedTerminal = [&] { done.append(QStringLiteral("focused")); };
    f.shelf.addTimer(1);
    f.loop.advance(61);
    f.shelf.tickTimers();
    f.m.needsYou = true;
    f.m.blockedTerminal = QStringLiteral("Terminal");
    f.m.hidden = true;
    f.m.asleep = true;
    f.engine.notchTapped();
    EXPECT_FALSE(f.m.hidden || f.m.asleep);
    EXPECT_TRUE(done.isEmpty());
    f.engine.notchTapped();
    EXPECT_EQ(f.m.boopCount, 2);
    f.engine.notchTapped();
    EXPECT_EQ(f.m.boopCount, 2);
    EXPECT_EQ(done, (QStringList{QStringLiteral("cleared"), QStringLiteral("focused")}));
    f.m.blockedTerminal = QString();
    f.engine.notchTapped();
    EXPECT_EQ(f.m.boopCount, 3);
    EXPECT_EQ(done.size(), 2);
}

TEST(Slide, StaysFiveSecondsAndComesHomeUnlessItIsGrabbedOrForgotten) {
    BehaviourFixture f;
    f.engine.watchSlides();
    const auto letGoAt = [&](double x) {
        f.m.sliding = true;
        f.m.slideX = x;
        f.m.sliding = false;
    };
    letGoAt(120);
    f.loop.advance(4.99);
    EXPECT_EQ(f.m.slideX, 120.0);
    f.loop.advance(0.26);
    EXPECT_NEAR(f.m.slideX, 120 * std::pow(0.5, 3), 2.5);
    f.loop.advance(0.3);
    EXPECT_EQ(f.m.slideX, 0.0);
    int changes = 0;
    auto watch = f.m.slideX.willChange.subscribe([&](double) { ++changes; });
    f.loop.advance(1);
    EXPECT_EQ(changes, 0) << "it is home";

    letGoAt(-200);
    f.loop.advance(5.2);
    f.m.sliding = true;
    f.loop.advance(0.02);
    const double held = f.m.slideX;
    EXPECT_LT(held, -1);
    f.loop.advance(20);
    EXPECT_EQ(f.m.slideX, held);
    f.m.sliding = false;
    f.loop.advance(5.1);
    f.engine.cancelSlideHome();
    const double forgotten = f.m.slideX;
    f.loop.advance(10);
    EXPECT_EQ(f.m.slideX, forgotten);
}

TEST(Numbers, PrintShortestWithAPoint) {
    for (const auto& [value, text] : std::vector<std::pair<double, const char*>>{{1512, "1512.0"},
                                                                                 {0, "0.0"},
                                                                                 {-0.5, "-0.5"},
                                                                                 {0.1, "0.1"},
                                                                                 {100000, "100000.0"},
                                                                                 {1.0 / 3, "0.3333333333333333"},
                                                                                 {1e300, "1.0e+300"},
                                                                                 {2.5e-7, "2.5e-07"}}) {
        EXPECT_EQ(formatNumber(value), QLatin1String(text));
    }
    EXPECT_EQ(formatNumbers({1, 2.5}), QStringLiteral("(1.0, 2.5)"));
}

}  // namespace
