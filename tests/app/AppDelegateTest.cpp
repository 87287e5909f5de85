#include <gtest/gtest.h>

#include <optional>

#include "app/AppDelegate.h"
#include "platform/linux/OutlineRegion.h"
#include "support/FakeDesktop.h"
#include "support/ManualLoop.h"
#include "support/MemoryPorts.h"

namespace {

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
    MemoryWorker worker;
    InlineQueue disk, jobs;
    QList<MenuItem> menu;
    QPointF menuAt;
    bool quit = false;
    std::optional<AppDelegate> delegate;

    AppDelegate::Launch launch(std::initializer_list<const char*> arguments = {}) {
        QStringList list{QStringLiteral("glimmet")};
        for (const char* argument : arguments) list.append(QLatin1String(argument));
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
                               worker,
                               disk,
                               jobs,
                               [] { return 0.5; },
                               [this](const QList<MenuItem>& items, QPointF at) {
                                   menu = items;
                                   menuAt = at;
                               },
                               [] {},
                               [this] { quit = true; },
                               QStringLiteral("/nonexistent")},
                         list);
        ::testing::internal::CaptureStderr();
        const auto result = delegate->launch();
        log = ::testing::internal::GetCapturedStderr();
        loop.drain();
        return result;
    }
    NotchModel& m() { return delegate->model(); }
    void move(double x, double down) {
        loop.advance(0.1);
        monitors.onMouseMoved({756 + x, 982 - down});
        loop.drain();
    }

    std::string log;
};

TEST(Launch, TellsWhereItLives) {
    ProgramFixture f;
    f.monitors.caps = true;
    EXPECT_EQ(f.launch(), AppDelegate::Launch::running);
    EXPECT_EQ(f.log, "glimmet: notch=(663.5, 950.0, 185.0, 32.0) top=982.0 toy=Critter\n");
    EXPECT_EQ(f.window.place, QRectF(576, 752, 360, 230));
    EXPECT_TRUE(f.monitors.started && f.workspace.started);
    EXPECT_TRUE(f.m().capsOn);
    EXPECT_EQ(f.m().cursor.get(), QPointF(756, 762));
    EXPECT_TRUE(f.window.input.isEmpty());
    EXPECT_GT(f.window.paints, 0);
}

TEST(Launch, DoesNotWaitForWhatIsStored) {
    ProgramFixture f;
    f.preferences.setBoolean(QStringLiteral("glimmet.hidden"), true);
    f.preferences.read = false;
    EXPECT_EQ(f.launch(), AppDelegate::Launch::running);
    EXPECT_FALSE(f.m().hidden);
    f.preferences.arrive();
    EXPECT_TRUE(f.m().hidden);
    f.preferences.onSaveFailed();
    EXPECT_EQ(f.m().worryCount, 1);
}

TEST(Launch, DemoModeLeavesTheSensorsOff) {
    ProgramFixture f;
    f.launch({"--toy=wea"});
    EXPECT_NE(f.log.find("toy=Weather"), std::string::npos);
    EXPECT_FALSE(f.workspace.started);
    EXPECT_FALSE(f.window.input.isEmpty());
    const QPointF cursor = f.m().cursor;
    f.move(0, 10);
    f.monitors.onRightMouseDown({756, 980});
    EXPECT_EQ(f.m().cursor.get(), cursor);
    EXPECT_TRUE(f.menu.isEmpty());
    f.loop.advance(120);
    EXPECT_FALSE(f.m().asleep);
}

TEST(Launch, InTheDemoChipsCanBeTouchedAllTheSame) {
    ProgramFixture f;
    f.launch({"--seed", "--toy=critter", "--trace"});
    f.loop.advance(2);
    ::testing::internal::CaptureStderr();
    f.move(-28, 112);
    EXPECT_EQ(::testing::internal::GetCapturedStderr(), "trace: chip Notes.app hover → true\n");
    f.monitors.onRightMouseDown({756 - 28, 982 - 112});
    ASSERT_FALSE(f.menu.isEmpty());
    EXPECT_EQ(f.menu.first().title, QStringLiteral("Open"));
}

TEST(Launch, WithoutAScreenSaysSo) {
    ProgramFixture f;
    f.screens.list.clear();
    EXPECT_EQ(f.launch(), AppDelegate::Launch::noScreen);
    EXPECT_EQ(f.log, "glimmet: no screen to live on\n");
    EXPECT_EQ(f.window.raised, 0);
}

TEST(Ticks, RingDueTimersTogetherWithOneBoopAndOneChime) {
    ProgramFixture f;
    f.launch({"--timer=59"});
    f.m().timers = f.m().timers.get() + f.m().timers.get();
    f.loop.advance(58);
    EXPECT_EQ(f.m().boopCount, 0);
    f.loop.advance(4);
    EXPECT_EQ(f.m().boopCount, 1);
    EXPECT_EQ(f.sounds.played, QStringList{QStringLiteral("Glass")});
    f.window.listener().pressed(PanelWindow::Button::left, {180, 10}, {756, 972});
    f.window.listener().released(PanelWindow::Button::left, {756, 972});
    EXPECT_TRUE(f.m().timers->isEmpty());
    EXPECT_EQ(f.m().boopCount, 2);

    f.m().quietUntil = f.clock.now() + 3600;
    f.m().timers = QList{HeldTimer{QUuid::createUuid(), f.clock.now(), 1}};
    f.loop.advance(4);
    EXPECT_EQ(f.m().boopCount, 3);
    EXPECT_EQ(f.sounds.played.size(), 1);
}

TEST(PassThrough, FollowsWhatIsDrawnWhileTheCreatureAttends) {
    ProgramFixture f;
    f.launch();
    f.move(0, 20);
    f.loop.advance(2);
    EXPECT_TRUE(f.m().hovering);
    EXPECT_EQ(f.window.input, pixelsInside(f.window.outline, 1));
    EXPECT_TRUE(f.window.input.contains(QPoint(180, 100)));
    EXPECT_FALSE(f.window.input.contains(QPoint(180, 112)));
    EXPECT_FALSE(f.window.input.contains(QPoint(60, 50)));
    f.move(0, 300);
    EXPECT_TRUE(f.window.input.isEmpty());
    f.m().dragNear = true;
    f.window.listener().dropTargeted(true);
    EXPECT_EQ(f.window.input, QRegion(0, 0, 360, 230));
    f.window.listener().dropTargeted(false);
    f.m().dragNear = false;
    f.window.listener().dropTargeted(false);
    EXPECT_TRUE(f.window.input.isEmpty());
}

TEST(Gestures, ATapBoopsAndAPullSlides) {
    ProgramFixture f;
    f.launch();
    f.move(0, 20);
    using Button = PanelWindow::Button;
    f.window.listener().pressed(Button::left, {180, 20}, {756, 962});
    f.window.listener().dragged({760, 960});
    f.window.listener().released(Button::left, {760, 960});
    EXPECT_EQ(f.m().boopCount, 1);
    f.window.listener().pressed(Button::left, {180, 20}, {756, 962});
    f.window.listener().dragged({856, 962});
    f.loop.drain();
    EXPECT_EQ(f.window.place.x(), 676);
    f.window.listener().released(Button::left, {856, 962});
    f.move(0, 500);
    EXPECT_FALSE(f.window.input.isEmpty());  // off its place it can be grabbed
    f.loop.advance(6);
    EXPECT_EQ(f.window.place.x(), 576);
    EXPECT_EQ(f.m().boopCount, 1);
    EXPECT_TRUE(f.window.input.isEmpty());
}

TEST(Gestures, EndWhenTheMenuTakesThePointer) {
    ProgramFixture f;
    f.launch();
    f.move(0, 20);
    using Button = PanelWindow::Button;
    f.window.listener().pressed(Button::left, {180, 20}, {756, 962});
    f.window.listener().dragged({856, 962});
    f.window.listener().pressed(Button::right, {180, 20}, {856, 962});  // the menu will get the release
    f.window.listener().dragged({900, 962});
    f.loop.drain();
    EXPECT_EQ(f.window.place.x(), 676);
    f.move(0, 500);
    f.loop.advance(6);
    EXPECT_EQ(f.window.place.x(), 576);
    EXPECT_TRUE(f.window.input.isEmpty());
    EXPECT_EQ(f.m().boopCount, 0);
}

TEST(Screens, AChangeLeadsTheEyesThere) {
    ProgramFixture f;
    f.launch({"--slide=100"});
    f.screens.list[0].frame = QRectF(0, 0, 1920, 1080);
    f.screens.onChange();
    f.loop.advance(0.3);
    EXPECT_EQ(f.window.place.x(), 676) << "the desktop may still be changing";
    f.loop.advance(0.1);
    EXPECT_EQ(f.window.place, QRectF(780, 850, 360, 230));
    EXPECT_EQ(f.m().slideX, 0.0);
    EXPECT_EQ(f.m().cursor.get(), QPointF(960, 860));
}

TEST(Frames, AreDrawnForTheBreathAloneWhileAsleep) {
    ProgramFixture f;
    f.launch();
    f.loop.advance(30);
    ASSERT_TRUE(f.m().asleep);
    const int before = f.window.paints;
    f.loop.advance(60);
    EXPECT_LE(f.window.paints - before, 240);
    EXPECT_GE(f.window.paints - before, 200);  // a breath too shallow for a pixel may be left out
}

TEST(Frames, AreNotDrawnWhileTheOpenFaceRests) {
    ProgramFixture f;
    f.launch();
    f.move(0, 20);
    f.loop.advance(3);
    int paints = 0;
    // Between two blinks, which come every 3.4 s and take 0.21 s.
    for (int i = 0; i < 34; ++i) {
        const int before = f.window.paints;
        f.loop.advance(0.1);
        paints += f.window.paints > before ? 1 : 0;
    }
    EXPECT_LE(paints, 4);
    EXPECT_GE(paints, 2);
}

}  // namespace
