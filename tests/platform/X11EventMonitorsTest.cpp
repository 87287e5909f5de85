#include "X11Test.h"

namespace {
class X11Monitors : public X11Test {
 protected:
    X11Monitors() : monitors(connection, sampler, &X11PanelWindow::isOwnWindow) {
        monitors.onMouseMoved = [this](QPointF pointer) { moves.append(pointer); };
        monitors.onLeftMouseDragged = [this](QPointF pointer) { drags.append(pointer); };
        monitors.onLeftMouseUp = [this](QPointF pointer) { ups.append(pointer); };
        monitors.onRightMouseDown = [this](QPointF pointer) { rights.append(pointer); };
        monitors.onScroll = [this](QPointF, double points) { scrolls.append(points); };
        monitors.onCapsLockChanged = [this](bool on) { locks.append(on); };
        monitors.start();
    }
    static void click(int button) {
        session().press(button);
        session().release(button);
    }
    testing::AssertionResult movesTo(QPoint place, double seconds = 5) {
        session().moveTo(place);
        return waitFor([&] { return moves.endsWith(modelAt(place)); }, seconds);
    }

    /// Takes what would otherwise open the window manager's menus and change desktops.
    OtherWindow floor{session(), {.geometry = {0, 0, 1280, 800}, .fullScreen = true}};
    X11EventMonitors monitors;
    QList<QPointF> moves, drags, ups, rights;
    QList<double> scrolls;
    QList<bool> locks;
};

TEST_F(X11Monitors, SampleMotionAtDisplayRateAndTheRestNotAtAll) {
    ASSERT_TRUE(movesTo({300, 300}));
    EXPECT_EQ(moves.size(), 1);
    EXPECT_EQ(monitors.pointerLocation(), moves.last());
    letPass(0.3);
    moves.clear();

    int reports = 0;
    const auto counter =
        connection->handle([&](const xcb_generic_event_t& event) { reports += code(event) == XCB_GE_GENERIC; });
    session().glide({300, 300}, {1100, 500}, 1000, 1);
    ASSERT_TRUE(waitFor([&] { return moves.endsWith(modelAt({1100, 500})); }));
    const double rate = qGuiApp->primaryScreen()->refreshRate() >= 20 ? qGuiApp->primaryScreen()->refreshRate() : 60;
    EXPECT_GE(moves.size(), 15);
    EXPECT_LE(moves.size(), rate * 1.3);
    EXPECT_LE(reports, 20) << "hardware reports arrive although the pointer is sampled";

    letPass(0.3);
    const auto count = moves.size();
    const uint32_t questions = xcb_no_operation(connection->xcb()).sequence;
    letPass(0.5);
    EXPECT_EQ(moves.size(), count);
    EXPECT_EQ(xcb_no_operation(connection->xcb()).sequence, questions + 1) << "the pointer is asked for while it rests";
    EXPECT_TRUE(movesTo({1101, 500}, 1));
    EXPECT_TRUE(drags.empty());
}

TEST_F(X11Monitors, TellDragsFromMovesAndRightPressesWhenAMenuCanOpen) {
    session().moveTo({300, 300});
    session().press(1);
    session().glide({300, 300}, {500, 500}, 100, 1);
    ASSERT_TRUE(waitFor([&] { return drags.endsWith(modelAt({500, 500})); }));
    EXPECT_FALSE(moves.contains(modelAt({500, 500})));
    letPass(0.3);
    session().release(1);
    ASSERT_TRUE(waitFor([&] {
        return ups == QList{modelAt({500, 500})} && moves.endsWith(ups.last());
    })) << "where the mouse is then, though it rests";
    const auto count = drags.size();
    ASSERT_TRUE(movesTo({200, 200}));
    session().press(3);
    ASSERT_TRUE(waitFor([&] { return floor.presses() == (QList{1, 3}); }));
    letPass(0.1);
    EXPECT_TRUE(rights.empty()) << "the other program still holds the pointer";
    session().moveTo({300, 200});  // what counts is where it was pressed
    session().release(3);
    EXPECT_TRUE(waitFor([&] { return rights == QList{modelAt({200, 200})}; }));
    EXPECT_EQ(drags.size(), count);
}

TEST_F(X11Monitors, HearTheWheelALeftHandersButtonsAndCapsLock) {
    for (const bool wanted : {false, true}) {
        monitors.wantScroll(wanted);
        for (int button : {4, 5, 5, 6, 7}) click(button);
        ASSERT_TRUE(movesTo({300, wanted ? 300 : 400}));  // so all has been heard
    }
    const QList<double> points{10, -10, -10};
    EXPECT_TRUE(waitFor([&] { return scrolls == points; })) << "up and down, while it is wanted";
    const auto map = [](const char* buttons) {
        const auto cookie = xcb_set_pointer_mapping(session().xcb(), 10, reinterpret_cast<const uint8_t*>(buttons));
        owned(xcb_set_pointer_mapping_reply(session().xcb(), cookie, nullptr));
    };
    map("\3\2\1\4\5\6\7\10\11\12");
    click(3);
    EXPECT_TRUE(waitFor([&] { return ups.size() == 1; }));
    EXPECT_TRUE(rights.empty());
    click(1);
    EXPECT_TRUE(waitFor([&] { return rights.size() == 1; }));
    EXPECT_EQ(ups.size(), 1);
    EXPECT_EQ(scrolls, points);
    map("\1\2\3\4\5\6\7\10\11\12");

    ASSERT_FALSE(monitors.capsLock());
    for (const bool on : {true, false}) {
        for (const bool down : {true, false}) session().key(66, down);
        EXPECT_TRUE(waitFor([&] { return locks.endsWith(on) && monitors.capsLock() == on; }));
    }
    EXPECT_EQ(locks, (QList{true, false}));
}
}  // namespace
