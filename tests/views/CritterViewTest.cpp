#include <gtest/gtest.h>

#include "views/Colors.h"
#include "views/CritterView.h"
#include "views/Picture.h"

namespace {

/// What an eye looks like, measured in a picture. `left` and so on are the visible white's edges.
struct SeenEye {
    QRectF white;
    QPointF pupil;  // centroid of the dark, relative to the middle of the eye
};

struct FaceFixture : PictureFixture {
    bool open = false;

    QPointF eyeCenter(double side) const { return {side * (open ? 26 : 15), open ? 57 : 44.5}; }

    void openUp() {
        open = true;
        m.hovering = true;
    }

    QImage rested(double seconds = 1) {
        rest(seconds);
        return picture();
    }

    SeenEye eye(const QImage& image, double side) {
        const QPointF c = eyeCenter(side);
        const double r = open ? 15 : 8.5;
        const QRectF area(c.x() - r - 1, c.y() - r - 1, 2 * r + 2, 2 * r + 2);
        SeenEye seen;
        seen.white = bounds(image, area, isLight).value_or(QRectF());
        QPointF sum;
        double weight = 0;
        for (double y = -r * 0.7; y < r * 0.7; y += 0.5) {
            for (double x = -r * 0.7; x < r * 0.7; x += 0.5) {
                if (std::hypot(x, y) > r - 1 || !isDark(at(image, c.x() + x, c.y() + y))) continue;
                sum += QPointF(x + 0.25, y + 0.25);
                ++weight;
            }
        }
        if (weight > 0) seen.pupil = sum / weight;
        return seen;
    }

    /// The share of the eye that the lid covers, measured on a line beside the pupil.
    double lid(const QImage& image) {
        const QPointF c = eyeCenter(-1);
        const double d = open ? 30 : 17;
        for (double y = -d / 2; y < d / 2; y += 0.5) {
            if (at(image, c.x() - 4.6, c.y() + y).lightness() > 60) return (y + d / 2) / d;
        }
        return 1;
    }

    void lookAt(double x, double down) { m.cursor = QPointF(m.centerX + x, m.screenTop - down); }
};

TEST(Eyes, StandWhereTheyShould) {
    FaceFixture f;
    f.lookAt(0, 800);
    for (const bool open : {false, true}) {
        if (open) f.openUp();
        const QImage image = f.rested();
        const double d = open ? 30 : 17;
        for (const double side : {-1.0, 1.0}) {
            const SeenEye eye = f.eye(image, side);
            EXPECT_NEAR(eye.white.width(), d, 1.2) << open << side;
            EXPECT_NEAR(eye.white.center().x(), f.eyeCenter(side).x(), 0.6) << open << side;
            EXPECT_NEAR(eye.white.bottom(), f.eyeCenter(side).y() + d / 2, 0.8) << open << side;
        }
    }
}

TEST(Eyes, FollowThePointerByItsDistance) {
    struct Case {
        bool open;
        double x, down;  // relative to the left eye
        QPointF offset;
    };
    for (const Case& c : std::vector<Case>{{false, 1000, 0, {3, 0}},
                                           {false, -80, 0, {-1.5, 0}},
                                           {false, 0, 300, {0, 3}},
                                           {true, 1000, 0, {6.5, 0}},
                                           {true, 80, 0, {3.25, 0}},
                                           {true, 0.2, 0.2, {0, 0}}}) {
        FaceFixture f;
        if (c.open) f.openUp();
        const QPointF eye = f.eyeCenter(-1);
        f.lookAt(eye.x() + c.x, eye.y() + c.down);
        // An eye's dark pupil is whole only below the lid; worried eyes are wide open but do not follow.
        f.m.capsOn = true;
        const QPointF straight = [&] {
            FaceFixture still;
            if (c.open) still.openUp();
            still.m.capsOn = true;
            still.lookAt(still.eyeCenter(-1).x(), still.eyeCenter(-1).y());
            return still.eye(still.rested(), -1).pupil;
        }();
        const QPointF seen = f.eye(f.rested(), -1).pupil - straight;
        EXPECT_NEAR(seen.x(), c.offset.x(), c.open ? 1.0 : 0.7) << c.x << "," << c.down << " open " << c.open;
        EXPECT_NEAR(seen.y(), c.offset.y(), c.open ? 1.0 : 0.7) << c.x << "," << c.down << " open " << c.open;
    }
}

TEST(Eyes, LidTellsTheMood) {
    struct Case {
        const char* name;
        std::function<void(FaceFixture&)> arrange;
        double closure;
    };
    for (const Case& c : std::vector<Case>{
             {"awake", [](auto&) {}, 0.12},
             {"caps lock", [](auto& f) { f.m.capsOn = true; }, 0.04},
             {"chewing", [](auto& f) { f.m.chewing = true; }, 0.55},
             {"chewing with caps lock", [](auto& f) { f.m.chewing = f.m.capsOn = true; }, 0.04},
             {"quiet", [](auto& f) { f.m.quietUntil = f.clock.now() + 1000; }, 0.4},
             {"tired", [](auto& f) { f.m.battery = 0.1; }, 0.46},
             {"yawning", [](auto& f) { f.m.yawning = true; }, 0.8},
             {"worried", [](auto& f) { ++f.m.worryCount; }, 0.02},
             {"worried in quiet", [](auto& f) { f.m.quietUntil = f.clock.now() + 1000, ++f.m.worryCount; }, 0.02},
         }) {
        FaceFixture f;
        f.lookAt(1000, 44.5);  // pupils out of the way
        c.arrange(f);
        EXPECT_NEAR(f.lid(f.rested(0.6)), c.closure, 0.07) << c.name;
    }
    FaceFixture f;
    f.lookAt(0, 800);
    f.m.quietUntil = f.clock.now() + 60;
    f.rested();
    f.loop.advance(70);
    EXPECT_NEAR(f.lid(f.rested()), 0.12, 0.065) << "quiet time is over by itself";
}

TEST(Eyes, BlinkOnTheirClockAndForAGlanceButNotAsleep) {
    FaceFixture f;
    f.lookAt(0, 800);
    const auto shutFor = [&](double seconds) {
        double shut = 0;
        for (double t = 0; t < seconds; t += 0.02) {
            f.loop.advance(0.02);
            if (f.lid(f.picture()) > 0.85) shut += 0.02;
        }
        return shut;
    };
    EXPECT_EQ(shutFor(3.3), 0);
    const double once = shutFor(1);
    EXPECT_GT(once, 0.02);
    EXPECT_LT(once, 0.2);
    ++f.m.glanceCount;
    EXPECT_GT(shutFor(0.4), 0.02);
    ++f.m.glanceCount;
    f.loop.advance(0.11);
    EXPECT_FALSE(f.bounds(f.picture(), {-26, 35, 52, 20}, [](QColor c) { return c.lightness() > 0; })) << "dashes";
    f.m.cameraInUse = true;
    f.m.asleep = true;
    f.loop.advance(1);
    ++f.m.glanceCount;
    f.m.asleep = false;
    f.m.cameraInUse = false;
    f.loop.advance(0.5);
    EXPECT_LT(f.lid(f.picture()), 0.2);
}

TEST(Eyes, ReactionsTurnThePupils) {
    struct Case {
        const char* name;
        std::function<void(NotchModel&)> cause;
        double after;
        QPointF offset;  // of the open face
    };
    for (const Case& c : std::vector<Case>{
             {"worry", [](NotchModel& m) { ++m.worryCount; }, 1, {4.5, -2.5}},
             {"glance down", [](NotchModel& m) { ++m.spawnCount; }, 0.6, {0, 5.5}},
             {"look left", [](NotchModel& m) { ++m.lookAroundCount; }, 0.45, {-5, 0.5}},
             {"look right", [](NotchModel& m) { ++m.lookAroundCount; }, 0.95, {5, 0.5}},
             {"worry wins", [](NotchModel& m) { ++m.lookAroundCount, ++m.worryCount; }, 0.95, {4.5, -2.5}},
             {"quiet glance", [](NotchModel& m) { m.quietUntil = Date{1e12}, ++m.spawnCount; }, 0.45, {0, 0}},
             {"quiet look", [](NotchModel& m) { m.quietUntil = Date{1e12}, ++m.lookAroundCount; }, 0.45, {0, 0}},
             {"back towards home", [](NotchModel& m) { m.slideX = 31.0; }, 0.1, {-4.5, 0.5}},
             {"back from the left", [](NotchModel& m) { m.slideX = -31.0; }, 0.1, {4.5, 0.5}},
         }) {
        FaceFixture f;
        f.openUp();
        f.m.capsOn = true;
        f.lookAt(0, 57);
        f.rested();
        c.cause(f.m);
        f.loop.advance(c.after);
        const QPointF seen = f.eye(f.picture(), 1).pupil;
        EXPECT_NEAR(seen.x(), c.offset.x(), 1.3) << c.name;
        EXPECT_NEAR(seen.y(), c.offset.y(), 1.3) << c.name;
    }
}

TEST(Face, JumpsWhenStartled) {
    FaceFixture f;
    f.lookAt(0, 800);
    const double rest = f.eye(f.rested(), 1).white.width();
    ++f.m.startleCount;
    f.loop.advance(0.15);
    const auto area = QRectF(0, 30, 40, 28);
    const auto jumped = f.bounds(f.picture(), area, PictureFixture::isLight);
    ASSERT_TRUE(jumped);
    EXPECT_GT(jumped->width(), rest * 1.1);
    f.loop.advance(2);
    EXPECT_NEAR(f.bounds(f.rested(), area, PictureFixture::isLight)->width(), rest, 0.6);
}

TEST(Face, ShutsItsEyesToTwoArcsForTheCameraAndInItsSleep) {
    for (const bool camera : {false, true}) {
        FaceFixture f;
        (camera ? f.m.cameraInUse : f.m.asleep) = true;
        const QImage image = f.rested();
        const auto arcs = f.bounds(image, {-60, 30, 120, 26}, PictureFixture::isLight);
        ASSERT_TRUE(arcs);
        EXPECT_NEAR(arcs->width(), camera ? 13 + 2 * 17 + 2.4 : 13 + 2 * 16 + 3, 1.6);
        EXPECT_NEAR(arcs->top(), camera ? 44.5 - 0.18 * 17 - 1.2 : 36 - 1.5, 1);
        EXPECT_LT(arcs->height(), 7);
        EXPECT_FALSE(f.bounds(image, {-5, 30, 10, 26}, PictureFixture::isLight));
    }
}

TEST(Face, OpensItsMouthForADrop) {
    FaceFixture f;
    const auto reddish = [](QColor c) { return c.red() > c.green() * 2 && c.red() > 60; };
    const QRectF below(-40, 74, 80, 46);
    f.openUp();
    EXPECT_LT(f.bounds(f.rested(), below, reddish).value_or(QRectF()).height(), 4);
    f.m.dragNear = true;
    const auto mouth = f.bounds(f.rested(2), below, reddish);
    ASSERT_TRUE(mouth);
    EXPECT_NEAR(mouth->width(), 40, 3);
    EXPECT_NEAR(mouth->bottom(), 113, 2);

    // It shuts over what it got and stays so, though the drag is not over yet; an hour of quiet lets it be.
    for (const bool quiet : {true, false}) {
        f.m.quietUntil = f.clock.now() + (quiet ? 1000 : 0);
        ++f.m.swallowCount;
        f.loop.advance(0.3);
        const bool eyes = f.eye(f.picture(), 1).white.height() > 20;
        const auto gulp = f.bounds(f.picture(), below, reddish);
        f.loop.advance(1);
        EXPECT_EQ(eyes, quiet);
        EXPECT_EQ(gulp.value_or(QRectF()).height() < 8, !quiet);
        EXPECT_EQ(f.bounds(f.picture(), below, reddish).value_or(QRectF()).height() < 8, !quiet);
    }
    f.m.dragNear = false;
    f.m.hovering = false;
    f.open = false;
    f.m.yawning = true;
    const auto yawn = f.bounds(f.rested(2), {-40, 54, 80, 40}, reddish);
    ASSERT_TRUE(yawn);
    EXPECT_NEAR(yawn->width(), 20, 2);
    EXPECT_NEAR(yawn->bottom(), 84, 2);
}

TEST(Face, ChewsEveryHalfSecondOrSo) {
    FaceFixture f;
    f.openUp();
    f.m.downloading = true;
    f.loop.advance(2);
    const auto brightness = [&](double wall) {
        f.clock.setNow({wall});
        return f.at(f.picture(), 0, 72 + 7 + 3.5).lightnessF() + f.at(f.picture(), 4, 72 + 7 + 3.5).lightnessF();
    };
    const double bite = brightness(0.55 * 1000 + 0.5);
    const double open = brightness(0.55 * 1001 + 0.5);
    EXPECT_GT(open, bite * 1.6);
    // Between the bites nothing is drawn.
    f.clock.setNow({0.55 * 1000 + 0.35});
    EXPECT_NEAR(f.root.nextFrame() - f.clock.uptime(), 0.2, 1e-6);
}

TEST(Face, BlushesWhileCharging) {
    FaceFixture f;
    f.openUp();
    const auto orange = [](QColor c) { return c.red() > 40 && c.red() > c.blue() * 2 && c.green() < c.red(); };
    const QRectF cheek(-52, 60, 18, 24);
    EXPECT_FALSE(f.bounds(f.rested(), cheek, orange));
    f.m.charging = true;
    const auto seen = f.bounds(f.rested(), cheek, orange);
    ASSERT_TRUE(seen);
    EXPECT_NEAR(seen->center().x(), -(74 + 13) / 2.0, 1.5);
    EXPECT_NEAR(seen->center().y(), 72 + 8 - 6.5, 1.5);
}

TEST(Face, WearsACountOfWhatItHolds) {
    FaceFixture f;
    f.shelf.addTimer(5);
    f.shelf.addTimer(6);
    const auto orange = [](QColor c) { return c.green() > 80 && c.blue() < 60; };
    const auto badge = f.bounds(f.rested(), {-60, 54, 120, 22}, orange);
    ASSERT_TRUE(badge);
    EXPECT_NEAR(badge->center().x(), 0, 0.6);
    EXPECT_NEAR(badge->top(), 59, 1);
    f.m.downloading = true;
    const QRectF beside(-12, 54, 24, 19);
    EXPECT_EQ(f.bounds(f.rested(), beside, [](QColor c) { return c.lightness() > 20; })->width(), badge->width());
    // It makes way for a mouth that is wider than itself, and for the shelf.
    for (auto cause : {&NotchModel::yawning, &NotchModel::hovering}) {
        f.m.*cause = true;
        EXPECT_FALSE(f.bounds(f.rested(), {-60, 54, 120, 22}, orange));
        f.m.*cause = false;
    }
}

TEST(Glyph, SymbolAndColourAreDecidedSeparately) {
    using M = NotchModel;
    const QColor orange = accentOrange(), plain = white(1), green = systemGreen();
    const struct {
        std::vector<Published<bool> M::*> on;
        bool told, newer, tired;  // of a meeting, of a version, by the battery
        int hour;
        const char* symbol;
        QColor color;
    } cases[] = {
        {{}, false, false, false, 12, "", {}},
        {{&M::charging}, false, false, false, 12, "", {}},
        {{&M::charging, &M::hovering}, false, false, false, 12, "bolt.fill", green},
        {{&M::charging, &M::needsYou}, false, false, false, 12, "exclamationmark", orange},
        {{&M::diskFull, &M::cameraInUse}, false, false, false, 12, "eye.slash.fill", orange},
        {{&M::micInUse}, false, false, false, 12, "waveform", plain},
        {{}, true, false, false, 12, "calendar", orange},
        {{&M::downloading, &M::offline}, false, false, false, 12, "arrow.down.circle", plain},
        {{&M::offline}, false, true, false, 12, "wifi.slash", plain},
        {{&M::hovering}, false, true, false, 12, "gift.fill", orange},
        {{&M::hovering, &M::diskFull}, false, false, false, 12, "externaldrive.fill", orange},
        {{&M::hovering}, false, false, true, 12, "battery.25", orange},
        {{&M::hovering}, false, false, false, 5, "moon.stars.fill", plain},
        {{&M::hovering}, false, false, false, 10, "cup.and.saucer.fill", plain},
        {{&M::hovering}, false, false, false, 11, "", {}},
        {{&M::hovering}, false, false, false, 21, "moon.stars.fill", plain},
    };
    for (const auto& c : cases) {
        CreatureFixture f;
        for (const auto member : c.on) f.m.*member = true;
        if (c.told) f.m.eventWhisper = QStringLiteral("x");
        if (c.newer) f.m.updateAvailable = QStringLiteral("2");
        if (c.tired) f.m.battery = 0.1;
        EXPECT_EQ(statusGlyph(f.m, {}, c.hour), (StatusGlyph{QLatin1String(c.symbol), c.color})) << &c - cases;
    }
    CreatureFixture f;
    EXPECT_EQ(statusGlyph(f.m, {.stretching = true}, 12).symbol, QStringLiteral("figure.walk"));
    EXPECT_EQ(statusGlyph(f.m, {.worried = true}, 8).symbol, QStringLiteral("cup.and.saucer.fill"));
    f.shelf.addTimer(1);
    f.loop.advance(61);
    f.shelf.tickTimers();
    EXPECT_EQ(statusGlyph(f.m, {}, 12).symbol, QStringLiteral("timer"));
}

TEST(Glyph, EndsThirtyPointsFromTheRightHoweverNarrowItIs) {
    for (auto cause : {&NotchModel::offline, &NotchModel::needsYou}) {
        FaceFixture f;
        f.m.*cause = true;
        f.openUp();
        const auto glyph = f.bounds(f.rested(), {40, 2, 60, 26}, [](QColor c) { return c.lightness() > 60; });
        ASSERT_TRUE(glyph);
        EXPECT_NEAR(glyph->right(), 107 - 30, 0.6);
        EXPECT_NEAR(glyph->center().y(), 6 + 7, 2);
    }
}

}  // namespace
