#include <gtest/gtest.h>

#include "views/Colors.h"
#include "views/Picture.h"
#include "views/StatusGlyph.h"

namespace {

struct FaceFixture : PictureFixture {
    void lookAt(double x, double down) { m.cursor = QPointF(m.centerX + x, m.screenTop - down); }
    void quieten(double seconds = 1000) { m.quietUntil = clock.now() + seconds; }
    double diameter() const { return m.hovering ? 30 : 17; }
    QPointF eye(int side) const { return m.hovering ? QPointF(side * 26, 57) : QPointF(side * 15, 44.5); }

    /// The dark's middle, from the middle of the right eye.
    QPointF pupil() {
        const auto middleIn = [this, image = picture()](double x, double y) {
            const QPointF reach = QPointF(x, y) * diameter();
            return bounds(image, {eye(1) - reach, eye(1) + reach}, isDark).center() - eye(1);
        };
        return {middleIn(0.46, 0.13).x(), middleIn(0.13, 0.36).y()};
    }
    /// The share of the left eye that the lid covers, measured on a line beside the pupil.
    double lid() {
        const double d = diameter();
        const QRectF line(eye(-1) - QPointF(0.235, 0.5) * d, QSizeF(0.4, d));
        const QRectF light = seen(line, [](QColor c) { return c.lightness() > 60; });
        return light.isNull() ? 1 : (light.top() - line.top()) / d;
    }
};

TEST(Eyes, TellTheMoodAndFollowThePointerUnlessSomethingTurnsThem) {
    const struct {
        const char* name;
        void (*cause)(FaceFixture&);
        double lid = 0.12;
        QPointF gaze = {6.5, 0};
        double after = 1;
    } cases[] = {
        {"awake", [](auto&) {}},
        {"half way", [](auto& f) { f.lookAt(26, 137); }, 0.12, {0, 3.25}},
        {"on it", [](auto& f) { f.lookAt(26.2, 57.2); }, 0.12, {0, 0}},
        {"caps lock", [](auto& f) { f.m.capsOn = true; }, 0.04},
        {"chewing", [](auto& f) { f.m.chewing = true; }, 0.55},
        {"chewing with caps lock", [](auto& f) { f.m.chewing = f.m.capsOn = true; }, 0.04},
        {"tired", [](auto& f) { f.m.battery = 0.1; }, 0.46},
        {"yawning", [](auto& f) { f.m.yawning = true; }, 0.8},
        {"quiet", [](auto& f) { f.quieten(); }, 0.4},
        {"quiet is over", [](auto& f) { f.m.hovering = false, f.quieten(0.3); }, 0.12, {2.6, 0}},
        {"quiet worry", [](auto& f) { f.quieten(), ++f.m.worryCount; }, 0.02, {}},
        {"worry", [](auto& f) { ++f.m.worryCount; }, 0.02, {4.5, -2.5}},
        {"worry wins", [](auto& f) { ++f.m.lookAroundCount, ++f.m.worryCount; }, 0.02, {4.5, -2.5}},
        {"glance down", [](auto& f) { ++f.m.spawnCount; }, 0.12, {0, 5.5}, 0.6},
        {"look left", [](auto& f) { ++f.m.lookAroundCount; }, 0.12, {-5, 0.5}, 0.45},
        {"look right", [](auto& f) { ++f.m.lookAroundCount; }, 0.12, {5, 0.5}, 0.95},
        {"back towards home", [](auto& f) { f.m.slideX = 31.0; }, 0.12, {-4.5, 0.5}, 0.1},
        {"back from the left", [](auto& f) { f.m.slideX = -31.0; }, 0.12, {4.5, 0.5}, 0.1},
    };
    for (const auto& [name, cause, lid, gaze, after] : cases) {
        FaceFixture f;
        f.m.hovering = true;
        f.lookAt(1026, 57);
        f.rest(1);
        cause(f);
        f.loop.advance(after);
        EXPECT_NEAR(f.lid(), lid, 0.07) << name;
        if (lid > 0.2) continue;  // which hides the pupil
        const QPointF off = f.pupil() - gaze;
        EXPECT_LT(std::max(std::abs(off.x()), std::abs(off.y())), 1.3) << name << off.x() << ' ' << off.y();
    }
}

TEST(Eyes, BlinkOnTheirClockAndForAGlanceButNotAsleep) {
    FaceFixture f;
    f.lookAt(0, 800);
    const auto shutFor = [&](double seconds) {
        double shut = 0;
        for (double t = 0; t < seconds; t += 0.02) {
            f.loop.advance(0.02);
            if (f.lid() > 0.85) shut += 0.02;
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

TEST(Face, JumpsWhenStartled) {
    FaceFixture f;
    const auto width = [&] { return f.seen({0, 30, 40, 28}, PictureFixture::isLight).width(); };
    f.rest(1);
    const double rest = width();
    ++f.m.startleCount;
    f.loop.advance(0.15);
    EXPECT_GT(width(), rest * 1.1);
}

TEST(Face, HasEachPartInItsPlace) {
    using P = PictureFixture;
    constexpr auto bright = [](QColor c) { return c.lightness() > 60; };
    constexpr auto warm = [](QColor c) { return c.red() > 40 && c.red() > c.blue() * 2; };
    constexpr auto orange = [](QColor c) { return c.green() > 80 && c.blue() < 60; };
    static constexpr auto hold = [](NotchModel& m) { m.timers = QList<HeldTimer>(2); };
    const QRectF eyes(-60, 30, 120, 26), cheek(-60, 60, 34, 24), below(-12, 54, 24, 19), corner(40, 2, 60, 26),
        mouth(-40, 54, 80, 66), inside(-40, 4, 80, 33);
    const struct {
        const char* name;
        void (*arrange)(NotchModel&);
        QRectF area;
        bool (*test)(QColor);
        QRectF seen = {};
    } cases[] = {
        {"arcs for the camera", [](auto& m) { m.cameraInUse = true; }, eyes, P::isLight, {-24.7, 40.2, 49.4, 6}},
        {"arcs asleep", [](auto& m) { m.asleep = true; }, eyes, P::isLight, {-24, 34.5, 48, 6}},
        {"no cheeks", [](auto& m) { m.hovering = true; }, cheek, warm},
        {"cheeks", [](auto& m) { m.hovering = m.charging = true; }, cheek, warm, {-49, 68, 11, 11}},
        {"badge", hold, below, orange, {-9, 59, 18, 14.4}},
        {"badge, no mouth", [](auto& m) { hold(m), m.downloading = true; }, below, bright, {-9, 59, 18, 14.4}},
        {"no badge on a wide mouth", [](auto& m) { hold(m), m.yawning = true; }, below, orange},
        {"no badge on the shelf", [](auto& m) { hold(m), m.hovering = true; }, below, orange},
        {"yawn", [](auto& m) { m.yawning = true; }, mouth, P::isReddish, {-10, 60, 20, 24}},
        {"wide glyph", [](auto& m) { m.offline = m.hovering = true; }, corner, bright, {65.5, 7.5, 11.5, 11}},
        {"narrow glyph", [](auto& m) { m.needsYou = m.hovering = true; }, corner, bright, {74.5, 7.5, 2.5, 11}},
        {"nothing of the hidden one", [](auto& m) { m.hidden = true; }, inside, bright},
        {"a chevron", [](auto& m) { m.hidden = m.hovering = true; }, inside, bright, {-5, 33, 10, 3}},
    };
    for (const auto& [name, arrange, area, test, seen] : cases) {
        FaceFixture f;
        arrange(f.m);
        f.rest();
        const QRectF is = f.seen(area, test);
        const QPointF start = is.topLeft() - seen.topLeft(), end = is.bottomRight() - seen.bottomRight();
        for (const double off : {start.x(), start.y(), end.x(), end.y()})
            EXPECT_NEAR(off, 0, 1.1) << name << ": " << is.left() << ' ' << is.top() << ' ' << is.width() << ' '
                                     << is.height();
    }
}

TEST(Face, OpensItsMouthForADrop) {
    FaceFixture f;
    const auto mouth = [&](double seconds) {
        f.loop.advance(seconds);
        return f.seen({-40, 54, 80, 66}, PictureFixture::isReddish);
    };
    f.m.hovering = true;
    EXPECT_LT(mouth(1).height(), 4);
    f.m.dragNear = true;
    EXPECT_GT(mouth(0.15).height(), 20) << "quickly";
    const QRectF wide = mouth(1.8);
    EXPECT_NEAR(wide.width(), 40, 3);
    EXPECT_NEAR(wide.bottom(), 113, 2);

    // It shuts over what it got and stays so, though the drag is not over yet; an hour of quiet lets it be.
    for (const bool quiet : {true, false}) {
        f.m.quietUntil = f.clock.now() + (quiet ? 1000 : 0);
        ++f.m.swallowCount;
        EXPECT_EQ(mouth(0.3).height() < 8, !quiet);
        EXPECT_EQ(f.lid() < 0.1, quiet) << "it shuts its eyes for the gulp";
        EXPECT_EQ(mouth(1).height() < 8, !quiet);
    }
}

TEST(Face, ChewsEveryHalfSecondOrSo) {
    FaceFixture f;
    f.m.hovering = true;
    f.m.downloading = true;
    f.loop.advance(2);
    const auto brightness = [&](double wall) {
        f.clock.setNow({wall});
        return f.at(f.picture(), 0, 82.5).lightnessF() + f.at(f.picture(), 4, 82.5).lightnessF();
    };
    const double bite = brightness(0.55 * 1000 + 0.5);
    EXPECT_GT(brightness(0.55 * 1001 + 0.5), bite * 1.6);
    // Between the bites nothing is drawn.
    f.clock.setNow({0.55 * 1000 + 0.35});
    EXPECT_NEAR(f.root.nextFrame() - f.clock.uptime(), 0.2, 1e-6);
}

TEST(Glyph, SymbolAndColourAreDecidedSeparately) {
    const QColor orange = accentOrange(), plain = white(1), green = systemGreen();
    const struct {
        const char* state;  // initials of what holds, see below
        int hour;
        const char* symbol;
        QColor color;
    } cases[] = {
        {"c", 12, "", {}},
        {"ch", 12, "bolt.fill", green},
        {"nrc", 12, "exclamationmark", orange},
        {"rw", 12, "timer", orange},
        {"vm", 12, "eye.slash.fill", plain},
        {"fv", 12, "eye.slash.fill", orange},
        {"m", 12, "waveform", plain},
        {"mw", 12, "waveform", orange},
        {"wd", 12, "calendar", orange},
        {"do", 12, "arrow.down.circle", plain},
        {"ou", 12, "wifi.slash", plain},
        {"chu", 12, "gift.fill", orange},
        {"cfh", 12, "externaldrive.fill", orange},
        {"ht", 8, "battery.25", orange},
        {"h", 5, "moon.stars.fill", plain},
        {"h", 10, "cup.and.saucer.fill", plain},
        {"h", 11, "", {}},
        {"h", 21, "moon.stars.fill", plain},
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

}  // namespace
