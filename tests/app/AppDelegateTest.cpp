#include <gtest/gtest.h>

#include <optional>

#include "app/AppDelegate.h"
#include "platform/EventMonitors.h"
#include "platform/ScreenLock.h"
#include "platform/Screens.h"
#include "platform/linux/OutlineRegion.h"
#include "support/ManualLoop.h"
#include "support/MemoryMusic.h"
#include "support/MemoryPorts.h"

using namespace Qt::StringLiterals;

namespace {

using Button = PanelWindow::Button;

struct FakeScreens : Screens {
    QList<Screen> screens() const override { return list; }
    QList<Screen> list{{QRectF(0, 0, 1512, 982), {}, {}, true}};
};

/// A window that draws into memory and remembers what it was told.
struct FakePanelWindow : PanelWindow {
    void setFrame(const QRectF& rect) override { place = rect; }
    QRectF frame() const override { return place; }
    void setOverdraw(const QMargins&) override {}
    void orderFrontRegardless() override {}
    void setInputRegion(const QRegion& region) override { input = region; }
    void setOutline(const QPainterPath& path) override { outline = path; }
    double devicePixelRatio() const override { return 1; }
    double refreshRate() const override { return 60; }
    void paint(const QRegion&, const std::function<void(QPainter&)>& draw) override {
        ++paints;
        QPainter painter(&picture);
        draw(painter);
    }
    void dragOut(const QUrl&, const QImage&, QPointF) override {}

    QRectF place;
    QRegion input;
    QPainterPath outline;
    int paints = 0;
    QImage picture{360, 230, QImage::Format_ARGB32_Premultiplied};
};

struct FakeScreenLock : ScreenLock {
    bool locked() const override { return false; }
};

struct FakeMonitors : EventMonitors {
    void start() override { started = true; }
    QPointF pointerLocation() const override { return {}; }
    bool capsLock() const override { return true; }
    bool started = false;
};

struct ProgramFixture {
    ManualClock clock;
    ManualLoop loop{clock};
    MemoryPreferences preferences;
    MemoryFiles files;
    FakeScreens screens;
    FakePanelWindow window;
    FakeMonitors monitors;
    FakeScreenLock screenLock;
    MemoryWorkspace workspace;
    MemorySounds sounds;
    MemoryDragPasteboard dragPasteboard;
    MemoryPasteboard pasteboard;
    MemorySharing sharing;
    MemoryIcons icons;
    MemoryPlayers players;
    MemoryKeys keys;
    MemoryHttp http;
    MemoryWorker worker;
    InlineQueue disk, jobs;
    QList<MenuItem> menu;
    std::optional<AppDelegate> delegate;

    AppDelegate::Launch launch(std::initializer_list<const char*> arguments = {}) {
        QStringList list{u"glimmet"_s};
        for (const char* argument : arguments) list.append(QLatin1String(argument));
        const auto showMenu = [this](const QList<MenuItem>& items, QPointF) { menu = items; };
        delegate.emplace(Ports{clock,
                               loop,
                               preferences,
                               files,
                               screens,
                               window,
                               monitors,
                               screenLock,
                               workspace,
                               sounds,
                               dragPasteboard,
                               pasteboard,
                               sharing,
                               icons,
                               players,
                               keys,
                               http,
                               worker,
                               disk,
                               jobs,
                               jobs,
                               [] { return 0.5; },
                               showMenu,
                               [] {},
                               [](Alert) {},
                               [] {},
                               u"/nonexistent"_s},
                         list);
        const auto result = delegate->launch();
        loop.drain();
        return result;
    }
    NotchModel& m() { return delegate->model(); }
    void move(double x, double down) {
        loop.advance(0.1);
        monitors.onMouseMoved({756 + x, 982 - down});
        loop.drain();
    }
    void press(PanelWindow::Button button, double x) { window.listener().pressed(button, {180, 20}, {x, 962}); }
    void drag(double x) { window.listener().dragged({x, 960}), loop.drain(); }
    void release(double x) { window.listener().released(Button::left, {x, 960}); }
};

TEST(Launch, StartsTheSensorsAndDoesNotWaitForWhatIsStored) {
    ProgramFixture f;
    f.preferences.setBoolean(u"glimmet.hidden"_s, true);
    f.preferences.read = false;
    f.launch();
    EXPECT_TRUE(f.monitors.started && f.workspace.started && f.m().capsOn);
    EXPECT_EQ(f.m().cursor.get(), QPointF(756, 762));
    EXPECT_GT(f.window.paints, 0);
    EXPECT_FALSE(f.m().hidden);
    f.preferences.arrive();
    EXPECT_TRUE(f.m().hidden);
    f.preferences.onSaveFailed();
    EXPECT_EQ(f.m().worryCount, 1);
}

TEST(Launch, DemoModeLeavesTheSensorsOffButItsChipsCanBeTouched) {
    ProgramFixture f;
    f.launch({"--seed", "--toy=critter", "--trace"});
    EXPECT_FALSE(f.workspace.started || f.window.input.isEmpty());
    const QPointF cursor = f.m().cursor;
    f.loop.advance(120);
    ::testing::internal::CaptureStderr();
    f.move(-28, 112);
    EXPECT_EQ(::testing::internal::GetCapturedStderr(), "trace: chip Notes.app hover → true\n");
    EXPECT_EQ(f.m().cursor.get(), cursor);
    EXPECT_FALSE(f.m().asleep);
    f.monitors.onRightMouseDown({756, 980});
    EXPECT_TRUE(f.menu.isEmpty()) << "the creature has none";
    f.monitors.onRightMouseDown({756 - 28, 982 - 112});
    EXPECT_EQ(f.menu.value(0).title, u"Open"_s);
}

TEST(Launch, NeedsAScreen) {
    ProgramFixture f;
    f.screens.list.clear();
    EXPECT_EQ(f.launch(), AppDelegate::Launch::noScreen);
}

TEST(Timers, RingTogetherWithOneBoopAndOneChimeAndAreSilentInQuiet) {
    ProgramFixture f;
    f.launch({"--timer=59"});
    f.m().timers = f.m().timers.get() + f.m().timers.get();
    f.loop.advance(58);
    EXPECT_EQ(f.m().boopCount, 0);
    f.loop.advance(4);
    EXPECT_EQ(f.m().boopCount, 1);
    EXPECT_EQ(f.sounds.played, QStringList{u"Glass"_s});
    f.m().quietUntil = f.clock.now() + 3600;
    f.m().timers = QList{HeldTimer{QUuid::createUuid(), f.clock.now(), 1}};
    f.loop.advance(4);
    EXPECT_EQ(f.m().boopCount, 2);
    EXPECT_EQ(f.sounds.played.size(), 1);
}

TEST(Gestures, ATapBoopsAndAPullSlidesUntilItIsLetGoOrTheMenuTakesThePointer) {
    ProgramFixture f;
    f.launch();
    f.move(0, 20);
    EXPECT_EQ(f.window.input, pixelsInside(f.window.outline, 1));
    f.press(Button::left, 756);
    f.drag(760);
    f.release(760);
    EXPECT_EQ(f.m().boopCount, 1);
    for (const bool menu : {false, true}) {
        f.press(Button::left, 756);
        f.drag(1156);
        EXPECT_EQ(f.window.place.x(), 576 + 280) << "no farther than this";
        f.drag(856);
        menu ? f.press(Button::right, 856) : f.release(856);  // the menu will get the release
        f.drag(900);
        EXPECT_EQ(f.window.place.x(), 676);
        f.move(0, 500);
        EXPECT_FALSE(f.window.input.isEmpty()) << "off its place it can be grabbed";
        f.loop.advance(6);
        EXPECT_EQ(f.window.place.x(), 576);
        EXPECT_TRUE(f.window.input.isEmpty());
        f.move(0, 20);
    }
    EXPECT_EQ(f.m().boopCount, 1);
}

TEST(Screens, AChangeLeadsTheEyesThereAndEndsTheWayHome) {
    ProgramFixture f;
    f.launch();
    f.m().sliding = true;
    f.m().slideX = 100.0;
    f.m().sliding = false;
    f.screens.list.append({QRectF(1512, 0, 1512, 982), {}, {}, false});
    f.screens.onChange();
    f.loop.advance(4.8);
    EXPECT_EQ(f.window.place.x(), 676) << "a screen beside its own is no reason to move";
    f.screens.list[0].frame = QRectF(0, 0, 1920, 1080);
    f.screens.onChange();
    f.loop.advance(0.2);
    EXPECT_EQ(f.window.place.x(), 676) << "the desktop may still be changing";
    for (int i = 0; i < 5; ++i) {
        f.loop.advance(0.2);
        EXPECT_EQ(f.window.place, QRectF(780, 850, 360, 230));
    }
    EXPECT_EQ(f.m().cursor.get(), QPointF(960, 860));
}

TEST(Frames, AreDrawnForTheBreathOnlyAndForBlinks) {
    ProgramFixture f;
    f.launch();
    const auto paintsIn = [&](double seconds) {
        const int before = f.window.paints;
        f.loop.advance(seconds);
        return f.window.paints - before;
    };
    f.loop.advance(30);
    ASSERT_TRUE(f.m().asleep);
    const int asleep = paintsIn(60);
    EXPECT_TRUE(asleep >= 200 && asleep <= 240) << asleep;  // a breath too shallow for a pixel may be left out
    f.move(0, 20);
    f.loop.advance(3);
    const int open = paintsIn(3.4);
    EXPECT_TRUE(open >= 2 && open <= 20) << open;
}

}  // namespace
