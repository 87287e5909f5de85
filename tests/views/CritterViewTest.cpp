#include <gtest/gtest.h>

#include "views/Colors.h"
#include "views/Picture.h"
#include "views/StatusGlyph.h"

namespace {

struct FaceFixture : PictureFixture {
    bool open = false;

    void openUp() { m.hovering = open = true; }
    double diameter() const { return open ? 30 : 17; }
    QPointF eyeCenter(double side) const { return {side * (open ? 26 : 15), open ? 57 : 44.5}; }
    void lookAt(double x, double down) { m.cursor = QPointF(m.centerX + x, m.screenTop - down); }
    QImage rested(double seconds = 1) {
        rest(seconds);
        return picture();
    }

    /// The visible white's edges.
    QRectF white(const QImage& image, double side) const {
        const double reach = diameter() / 2 + 1;
        return bounds(image, QRectF(eyeCenter(side) - QPointF(reach, reach), QSizeF(2 * reach, 2 * reach)), isLight);
    }
    /// The dark's centroid, from the middle of the eye.
    QPointF pupil(const QImage& image, double side) const {
        const QPointF c = eyeCenter(side);
        const double r = diameter() / 2;
        QPointF sum;
        double weight = 0;
        for (double y = -r * 0.7; y < r * 0.7; y += 0.5) {
            for (double x = -r * 0.7; x < r * 0.7; x += 0.5) {
                if (std::hypot(x, y) > r - 1 || !isDark(at(image, c.x() + x, c.y() + y))) continue;
                sum += QPointF(x + 0.25, y + 0.25);
                ++weight;
            }
        }
        return weight > 0 ? sum / weight : QPointF();
    }
    /// The share of the eye that the lid covers, measured on a line beside the pupil.
    double lid(const QImage& image) const {
        const QPointF c = eyeCenter(-1);
        const double d = diameter();
        for (double y = -d / 2; y < d / 2; y += 0.5) {
            if (at(image, c.x() - 4.6, c.y() + y).lightness() > 60) return (y + d / 2) / d;
        }
        return 1;
    }
};

TEST(Eyes, LidTellsTheMood) {
    const struct {
        const char* name;
        void (*arrange)(FaceFixture&);
        double closure;
    } cases[] = {
        {"awake", [](auto&) {}, 0.12},
        {"caps lock", [](auto& f) { f.m.capsOn = true; }, 0.04},
        {"chewing", [](auto& f) { f.m.chewing = true; }, 0.55},
        {"chewing with caps lock", [](auto& f) { f.m.chewing = f.m.capsOn = true; }, 0.04},
        {"quiet", [](auto& f) { f.m.quietUntil = f.clock.now() + 1000; }, 0.4},
        {"quiet is over by itself", [](auto& f) { f.m.quietUntil = f.clock.now() + 0.3; }, 0.12},
        {"tired", [](auto& f) { f.m.battery = 0.1; }, 0.46},
        {"yawning", [](auto& f) { f.m.yawning = true; }, 0.8},
        {"worried", [](auto& f) { ++f.m.worryCount; }, 0.02},
        {"worried in quiet", [](auto& f) { f.m.quietUntil = f.clock.now() + 1000, ++f.m.worryCount; }, 0.02},
    };
    for (const auto& c : cases) {
        FaceFixture f;
        f.lookAt(1000, 44.5);  // pupils out of the way
        c.arrange(f);
        EXPECT_NEAR(f.lid(f.rested(0.6)), c.closure, 0.07) << c.name;
    }
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
    EXPECT_NEAR(shutFor(1), 0.1, 0.08);
    ++f.m.glanceCount;
    EXPECT_GT(shutFor(0.4), 0.02);
    ++f.m.glanceCount;
    f.loop.advance(0.11);
    EXPECT_TRUE(f.seen({-26, 35, 52, 20}, [](QColor c) { return c.lightness() > 0; }).isNull()) << "dashes";
    f.loop.advance(0.5);
    f.m.asleep = true;
    ++f.m.glanceCount;
    f.m.asleep = false;
    EXPECT_EQ(shutFor(0.3), 0);
}

TEST(Eyes, PupilsFollowThePointerUnlessSomethingTurnsThem) {
    const struct {
        const char* name;
        void (*cause)(FaceFixture&);
        double after;
        QPointF offset;  // of the open face's right eye
    } cases[] = {
        {"far", [](auto& f) { f.lookAt(1026, 57); }, 1, {6.5, 0}},
        {"half way", [](auto& f) { f.lookAt(26, 137); }, 1, {0, 3.25}},
        {"on it", [](auto& f) { f.lookAt(26.2, 57.2); }, 1, {0, 0}},
        {"worry", [](auto& f) { ++f.m.worryCount; }, 1, {4.5, -2.5}},
        {"glance down", [](auto& f) { ++f.m.spawnCount; }, 0.6, {0, 5.5}},
        {"look left", [](auto& f) { ++f.m.lookAroundCount; }, 0.45, {-5, 0.5}},
        {"look right", [](auto& f) { ++f.m.lookAroundCount; }, 0.95, {5, 0.5}},
        {"worry wins", [](auto& f) { ++f.m.lookAroundCount, ++f.m.worryCount; }, 0.95, {4.5, -2.5}},
        {"quiet glance", [](auto& f) { f.m.quietUntil = Date{1e12}, ++f.m.spawnCount; }, 0.45, {0, 0}},
        {"quiet look", [](auto& f) { f.m.quietUntil = Date{1e12}, ++f.m.lookAroundCount; }, 0.45, {0, 0}},
        {"back towards home", [](auto& f) { f.m.slideX = 31.0; }, 0.1, {-4.5, 0.5}},
        {"back from the left", [](auto& f) { f.m.slideX = -31.0; }, 0.1, {4.5, 0.5}},
    };
    for (const auto& c : cases) {
        FaceFixture f;
        f.openUp();
        f.m.capsOn = true;  // an eye's dark pupil is whole only below the lid
        f.lookAt(0, 57);
        f.rested();
        c.cause(f);
        f.loop.advance(c.after);
        const QPointF off = f.pupil(f.picture(), 1) - c.offset;
        EXPECT_LT(std::max(std::abs(off.x()), std::abs(off.y())), 1.3) << c.name << off.x() << ' ' << off.y();
    }
}

TEST(Face, JumpsWhenStartled) {
    FaceFixture f;
    f.lookAt(0, 800);
    const auto width = [&] { return f.seen({0, 30, 40, 28}, PictureFixture::isLight).width(); };
    f.rest(1);
    const double rest = width();
    ++f.m.startleCount;
    f.loop.advance(0.15);
    EXPECT_GT(width(), rest * 1.1);
    f.rest(2);
    EXPECT_NEAR(width(), rest, 0.6);
}

TEST(Face, ShutsItsEyesToTwoArcsForTheCameraAndInItsSleep) {
    for (const bool camera : {false, true}) {
        FaceFixture f;
        (camera ? f.m.cameraInUse : f.m.asleep) = true;
        const QImage image = f.rested();
        const QRectF arcs = f.bounds(image, {-60, 30, 120, 26}, PictureFixture::isLight);
        EXPECT_NEAR(arcs.width(), camera ? 13 + 2 * 17 + 2.4 : 13 + 2 * 16 + 3, 1.6);
        EXPECT_NEAR(arcs.top(), camera ? 44.5 - 0.18 * 17 - 1.2 : 36 - 1.5, 1);
        EXPECT_LT(arcs.height(), 7);
        EXPECT_TRUE(f.bounds(image, {-5, 30, 10, 26}, PictureFixture::isLight).isNull());
    }
}

TEST(Face, OpensItsMouthForADrop) {
    FaceFixture f;
    const auto mouth = [&](double seconds) {
        f.loop.advance(seconds);
        return f.seen({-40, 54, 80, 66}, PictureFixture::isReddish);
    };
    f.openUp();
    EXPECT_LT(mouth(1).height(), 4);
    f.m.dragNear = true;
    const QRectF wide = mouth(2);
    EXPECT_NEAR(wide.width(), 40, 3);
    EXPECT_NEAR(wide.bottom(), 113, 2);

    // It shuts over what it got and stays so, though the drag is not over yet; an hour of quiet lets it be.
    for (const bool quiet : {true, false}) {
        f.m.quietUntil = f.clock.now() + (quiet ? 1000 : 0);
        ++f.m.swallowCount;
        EXPECT_EQ(mouth(0.3).height() < 8, !quiet);
        EXPECT_EQ(f.white(f.picture(), 1).height() > 20, quiet) << "it shuts its eyes for the gulp";
        EXPECT_EQ(mouth(1).height() < 8, !quiet);
    }
    f.m.dragNear = f.m.hovering = false;
    f.m.yawning = true;
    const QRectF yawn = mouth(2);
    EXPECT_NEAR(yawn.width(), 20, 2);
    EXPECT_NEAR(yawn.bottom(), 84, 2);
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
    EXPECT_GT(brightness(0.55 * 1001 + 0.5), bite * 1.6);
    // Between the bites nothing is drawn.
    f.clock.setNow({0.55 * 1000 + 0.35});
    EXPECT_NEAR(f.root.nextFrame() - f.clock.uptime(), 0.2, 1e-6);
}

TEST(Face, BlushesWhileCharging) {
    FaceFixture f;
    f.openUp();
    for (const bool charging : {false, true}) {
        f.m.charging = charging;
        f.rest(1);
        const QRectF blush = f.seen({-60, 60, 34, 24}, [](QColor c) { return c.red() > 40 && c.red() > c.blue() * 2; });
        EXPECT_NEAR(blush.center().x(), charging ? -(74 + 13) / 2.0 : 0, 1.5);
        EXPECT_NEAR(blush.center().y(), charging ? 72 + 8 - 6.5 : 0, 1.5);
    }
}

TEST(Face, WearsACountOfWhatItHolds) {
    FaceFixture f;
    f.shelf.addTimer(5);
    f.shelf.addTimer(6);
    const auto orange = [](QColor c) { return c.green() > 80 && c.blue() < 60; };
    const auto badge = [&] { return f.rest(1), f.seen({-60, 54, 120, 22}, orange); };
    const QRectF seen = badge();
    EXPECT_NEAR(seen.center().x(), 0, 0.6);
    EXPECT_NEAR(seen.top(), 59, 1);
    f.m.downloading = true;
    EXPECT_EQ(f.seen({-12, 54, 24, 19}, [](QColor c) { return c.lightness() > 20; }).width(), seen.width());
    // It makes way for a mouth that is wider than itself, and for the shelf.
    for (auto cause : {&NotchModel::yawning, &NotchModel::hovering}) {
        f.m.*cause = true;
        EXPECT_TRUE(badge().isNull());
        f.m.*cause = false;
    }
}

TEST(Glyph, SymbolAndColourAreDecidedSeparately) {
    const QColor orange = accentOrange(), plain = white(1), green = systemGreen();
    const struct {
        const char* state;  // initials of what holds, see below
        int hour;
        const char* symbol;
        QColor color;
    } cases[] = {
        {"", 12, "", {}},
        {"c", 12, "", {}},
        {"ch", 12, "bolt.fill", green},
        {"cn", 12, "exclamationmark", orange},
        {"fv", 12, "eye.slash.fill", orange},
        {"m", 12, "waveform", plain},
        {"w", 12, "calendar", orange},
        {"do", 12, "arrow.down.circle", plain},
        {"ou", 12, "wifi.slash", plain},
        {"hu", 12, "gift.fill", orange},
        {"fh", 12, "externaldrive.fill", orange},
        {"ht", 12, "battery.25", orange},
        {"h", 5, "moon.stars.fill", plain},
        {"h", 10, "cup.and.saucer.fill", plain},
        {"h", 11, "", {}},
        {"h", 21, "moon.stars.fill", plain},
        {"rw", 12, "timer", orange},
    };
    for (const auto& c : cases) {
        CreatureFixture f;
        const auto is = [&](char initial) { return QByteArray(c.state).contains(initial); };
        f.m.charging = is('c'), f.m.hovering = is('h'), f.m.needsYou = is('n'), f.m.diskFull = is('f');
        f.m.cameraInUse = is('v'), f.m.micInUse = is('m'), f.m.downloading = is('d'), f.m.offline = is('o');
        if (is('w')) f.m.eventWhisper = QStringLiteral("x");
        if (is('u')) f.m.updateAvailable = QStringLiteral("2");
        if (is('t')) f.m.battery = 0.1;
        if (is('r')) f.m.timers = QList{HeldTimer{{}, {}, 1, true}};
        EXPECT_EQ(statusGlyph(f.m, {}, c.hour), (StatusGlyph{QLatin1String(c.symbol), c.color})) << c.state << c.hour;
    }
    CreatureFixture f;
    EXPECT_EQ(statusGlyph(f.m, {.stretching = true}, 12).symbol, QStringLiteral("figure.walk"));
    EXPECT_EQ(statusGlyph(f.m, {.worried = true}, 8).symbol, QStringLiteral("cup.and.saucer.fill"));
}

TEST(Glyph, EndsThirtyPointsFromTheRightHoweverNarrowItIs) {
    for (auto cause : {&NotchModel::offline, &NotchModel::needsYou}) {
        FaceFixture f;
        f.m.*cause = true;
        f.openUp();
        f.rest(1);
        const QRectF glyph = f.seen({40, 2, 60, 26}, [](QColor c) { return c.lightness() > 60; });
        EXPECT_NEAR(glyph.right(), 107 - 30, 0.6);
        EXPECT_NEAR(glyph.center().y(), 6 + 7, 2);
    }
}

}  // namespace
