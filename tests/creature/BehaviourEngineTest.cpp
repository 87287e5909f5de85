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

// The shape at rest is 185 x 58, open 214 x 108.
TEST(Hovering, BeginsAtTheInnerMarginAndEndsBeyondTheOuterOne) {
    const struct {
        QPointF stillOut, in, stillIn, out;
        const char *entering, *leaving;
    } ways[] = {{{0, 73}, {0, 72}, {0, 132}, {0, 133}, "(756.0, 910.0)", "(756.0, 849.0)"},
                {{107, 20}, {106, 20}, {131, 20}, {132, 20}, "(862.0, 962.0)", "(888.0, 962.0)"},
                {{-107, 0}, {-106, 0}, {-131, 0}, {-132, 0}, "(650.0, 982.0)", "(624.0, 982.0)"}};
    for (const auto& way : ways) {
        BehaviourFixture f;
        for (const QPointF place : {way.stillOut, way.in, way.stillIn, way.out}) {
            f.moveTo(place.x(), place.y());
            EXPECT_EQ(f.m.hovering, place == way.in || place == way.stillIn) << place.x() << ' ' << place.y();
        }
        EXPECT_EQ(f.traces.join(u'\n'), QStringLiteral("hovering false → true at %1 zone=(106.5, 72.0)\n"
                                                       "hovering true → false at %2 zone=(121.0, 122.0)")
                                            .arg(QLatin1String(way.entering), QLatin1String(way.leaving)));
    }
}

TEST(Gaze, IsPublishedOnlyForMovesThatShow) {
    BehaviourFixture f;
    const struct {
        QPointF to;
        double elapsed;
        QPointF seen;
    } moves[] = {{{300, 400}, 0.1, {300, 400}},  {{301, 402}, 0.1, {300, 400}},  // 3 points
                 {{302, 402}, 0.1, {302, 402}},                                  // 4 points
                 {{340, 402}, 0.03, {302, 402}},                                 // too soon
                 {{340, 402}, 0.03, {340, 402}}, {{0, 60}, 0.01, {0, 60}}};  // a change of hovering is always published
    for (const auto& [to, elapsed, seen] : moves) {
        f.moveTo(to.x(), to.y(), elapsed);
        f.clock.setNow({0});  // somebody sets the time
        EXPECT_EQ(f.m.cursor.get(), QPointF(756 + seen.x(), 982 - seen.y())) << to.x() << ' ' << to.y();
    }
}

TEST(Startle, NeedsSpeedNearnessAndTheCritter) {
    const struct {
        double x, elapsed;
        Toy toy;
        int startles;
    } cases[] = {{100, 0.05, Toy::critter, 1},
                 {100, 0.5, Toy::critter, 0},
                 {170, 0.05, Toy::critter, 0},
                 {100, 0.05, Toy::weather, 0}};
    for (const auto& c : cases) {
        BehaviourFixture f;
        f.m.toy = c.toy;
        f.moveTo(c.x + 300, 30, 1);
        f.moveTo(c.x, 30, c.elapsed);
        EXPECT_EQ(f.m.startleCount, c.startles) << "row " << &c - cases;
    }
}

TEST(Startle, WakesASleeperAndCoolsDown) {
    BehaviourFixture f;
    f.m.asleep = true;
    for (const auto& [pause, startles] : {std::pair(0.0, 1), {0.0, 1}, {0.5, 2}}) {  // a flick takes 0.35 s
        f.loop.advance(pause);
        f.moveTo(500, 30, 0.3);
        f.moveTo(0, 30, 0.05);
        EXPECT_EQ(f.m.startleCount, startles);
        EXPECT_FALSE(f.m.asleep);
    }
}

TEST(Dozing, FallsAsleepAfter22SecondsWithoutTheUserUnlessWatchedHiddenOrWeather) {
    BehaviourFixture f;
    f.clock.setNow({0});  // somebody sets the time
    f.loop.advance(22);
    f.engine.lifeTick();
    EXPECT_FALSE(f.m.asleep);
    const auto life = f.loop.every(4, [&f] { f.engine.lifeTick(); });
    const auto staysAwake = [&] { return f.loop.advance(60), !f.m.asleep; };
    for (Published<bool>* reason : {&f.m.hovering, &f.m.hidden}) {
        *reason = true;
        EXPECT_TRUE(staysAwake());
        *reason = false;
    }
    f.m.toy = Toy::weather;
    EXPECT_TRUE(staysAwake());
    f.m.toy = Toy::critter;
    EXPECT_FALSE(staysAwake());
    f.engine.applicationActivated();
    EXPECT_TRUE(!f.m.asleep && f.m.glanceCount == 1);
}

TEST(Stretch, ComesAfterFiftyMinutesOfWorkAndNotAgainSoon) {
    BehaviourFixture f;
    const auto ticks = f.loop.every(4, [&f] { f.engine.lifeTick(); });
    const auto work = [&](double seconds, double pause = 10) {
        for (double t = 0; t < seconds; t += pause) f.moveTo(500 + std::fmod(t, 20), 500, pause);
    };
    work(7200, 60);
    EXPECT_EQ(f.m.stretchCount, 0) << "it dozes off in every minute";
    for (const auto& [seconds, stretches] : {std::pair(2990, 0), {30, 1}, {3270, 1}, {60, 2}}) {
        work(seconds);
        EXPECT_EQ(f.m.stretchCount, stretches);
    }
}

TEST(Yawns, TakeASecondAndAHalfUnlessSomethingSpeaksAgainstIt) {
    BehaviourFixture f;
    f.engine.yawn();
    f.loop.advance(1.59);
    f.engine.yawn();  // during a yawn: must not make it longer
    EXPECT_TRUE(f.m.yawning);
    f.loop.advance(0.02);
    EXPECT_FALSE(f.m.yawning);

    const auto declines = [&f] { return f.engine.yawn(), !f.m.yawning; };
    for (Published<bool>* reason : {&f.m.asleep, &f.m.hovering, &f.m.dragNear}) {
        *reason = true;
        EXPECT_TRUE(declines());
        *reason = false;
    }
    f.m.toy = Toy::weather;
    EXPECT_TRUE(declines());
    f.m.toy = Toy::critter;
    f.m.quietUntil = f.clock.now() + 1;
    EXPECT_TRUE(declines());
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
    const auto watch = f.m.yawning.willChange.subscribe([&](bool yawning) { yawns += yawning ? 1 : 0; });
    f.nextRandom = 0;
    // The first tick at 60 s yawns; the next yawn is due just after 240 s, and ticks come every 15 s.
    for (const auto& [seconds, seen] : {std::pair(45, 0), {16, 1}, {180, 1}, {15, 2}}) {
        f.loop.advance(seconds);
        EXPECT_EQ(yawns, seen);
    }
    f.m.battery = 1.0;
    f.loop.advance(1000);
    EXPECT_EQ(yawns, 2);
}

TEST(Tap, TakesTheFirstThingToDo) {
    BehaviourFixture f;
    std::string done;
    f.engine.clearDoneTimers = [&] {
        done += "cleared ";
        f.shelf.clearDoneTimers();
    };
    f.engine.focusBlockedTerminal = [&] { done += "focused "; };
    f.shelf.addTimer(1);
    f.loop.advance(61);
    f.shelf.tickTimers();
    f.m.needsYou = f.m.hidden = f.m.asleep = true;
    f.m.blockedTerminal = QStringLiteral("Terminal");
    for (const auto& [boops, wanted] :
         {std::pair(1, ""), {2, "cleared "}, {2, "cleared focused "}, {3, "cleared focused "}}) {
        if (boops == 3) f.m.blockedTerminal = QString();
        f.engine.notchTapped();
        EXPECT_FALSE(f.m.hidden || f.m.asleep);
        EXPECT_EQ(f.m.boopCount, boops);
        EXPECT_EQ(done, wanted);
    }
}

TEST(Slide, StaysFiveSecondsAndComesHomeUnlessItIsGrabbed) {
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
    f.m.sliding = false;
    f.loop.advance(4);
    EXPECT_EQ(f.m.slideX, held) << "neither in the hand nor right after";
}

TEST(Numbers, PrintShortestWithAPoint) {
    EXPECT_EQ(formatNumbers({0, -0.1, 100000, 2.5e-7, 1e300}),
              QStringLiteral("(0.0, -0.1, 100000.0, 2.5e-07, 1.0e+300)"));
}

}  // namespace
