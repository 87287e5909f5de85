#include <xcb/shape.h>

#include "desktop/DesktopTest.h"

namespace {

class Stacking : public DesktopTest {
 protected:
    static constexpr QRect kScreen{0, 0, 1512, 982};

    /// What lies over the panel and can be seen, from the bottom to the top.
    QList<xcb_window_t> above(xcb_window_t panel) const {
        const QList<xcb_window_t> windows = session.stacking();
        return windows.mid(windows.indexOf(panel) + 1);
    }
};

TEST_F(Stacking, ItLiesOverWhatIsManagedAndUnderWhatIsNot) {
    auto menu = std::make_unique<OtherWindow>(
        session, OtherWindow::Options{.geometry = {700, 0, 120, 40}, .overrideRedirect = true});
    Glimmet glimmet(session, home);
    ASSERT_TRUE(glimmet.started());
    EXPECT_TRUE(waitFor([&] { return above(glimmet.panel()).contains(menu->id()); })) << "even if it was there before";
    menu.reset();
    OtherWindow fullScreen(session, {.geometry = kScreen, .colour = kLight, .fullScreen = true});
    EXPECT_TRUE(waitFor([&] { return panelOnTop(glimmet); })) << "a full-screen window";
    EXPECT_TRUE(waitFor([&] { return fullScreen.active(); }));
    EXPECT_TRUE(waitForBody(185, 58));

    OtherWindow dragPicture(session, {.geometry = {700, 0, 120, 40}, .overrideRedirect = true});
    Home other;
    Glimmet second(session, other);
    ASSERT_TRUE(second.started());
    letPass(0.5);
    EXPECT_TRUE(above(glimmet.panel()).contains(dragPicture.id()));
    const QList<xcb_window_t> settled = session.stacking();
    for (int i = 0; i < 10; ++i) {
        letPass(0.1);
        EXPECT_EQ(session.stacking(), settled) << "two of its kind leave each other alone";
    }

    xcb_client_message_event_t close{XCB_CLIENT_MESSAGE, 32, 0, glimmet.panel(), session.atom("WM_PROTOCOLS"), {}};
    close.data.data32[0] = session.atom("WM_DELETE_WINDOW");
    xcb_send_event(session.xcb(), false, glimmet.panel(), 0, reinterpret_cast<const char*>(&close));
    letPass(0.5);
    EXPECT_NE(glimmet.panel(), XCB_NONE) << "it cannot be closed";
}

TEST_F(Stacking, NothingHeldIsSeenOnALockedScreen) {
    Glimmet glimmet(session, home, {QStringLiteral("--bites")});
    ASSERT_TRUE(glimmet.started());
    const auto below = windowBelow(glimmet);
    session.moveTo(kOnNotch);
    ASSERT_TRUE(waitForBody(320, 152));
    const auto opensTo = [&](int height) {
        return waitFor([&] { return glimmet.inputRegion().boundingRect().height() == height; });
    };
    {
        const OtherWindow drawing(session, {.geometry = kScreen, .overrideRedirect = true});
        EXPECT_TRUE(opensTo(108));
        xcb_shape_rectangles(session.xcb(), XCB_SHAPE_SO_SET, XCB_SHAPE_SK_INPUT, XCB_CLIP_ORDERING_UNSORTED,
                             drawing.id(), 0, 0, 0, nullptr);
        session.sync();
        EXPECT_TRUE(opensTo(152)) << "what lets clicks through is no lock";
    }
    session.press(3);
    session.release(3);
    ASSERT_TRUE(waitFor([&] { return glimmet.menus().size() == 1; }));
    {
        OtherWindow locker(session, {.geometry = kScreen.adjusted(1, 1, -1, -1), .overrideRedirect = true});
        EXPECT_TRUE(waitFor([&] { return glimmet.menus().isEmpty(); }));
        EXPECT_TRUE(above(glimmet.panel()).contains(locker.id()));
        session.click(kOnNotch + QPoint(5, 0), 3);
        letPass(0.5);
        EXPECT_TRUE(glimmet.menus().isEmpty());
        EXPECT_TRUE(opensTo(108)) << "as with nothing held";
    }
    EXPECT_TRUE(opensTo(152));
}

class WithoutCompositor : public DesktopTest {
 protected:
    WithoutCompositor() : DesktopTest(Compositor::none) {}

    static bool light(QRgb colour) { return qRed(colour) > 200 && qGreen(colour) > 200 && qBlue(colour) > 200; }
};

TEST_F(WithoutCompositor, NothingButTheOutlineIsSeen) {
    Glimmet glimmet(session, home);
    ASSERT_TRUE(glimmet.started());
    const auto clean = [&](double width, double height) {
        ASSERT_TRUE(waitForBody(width, height));
        ASSERT_TRUE(waitForEyes());
        const auto stray = [&] {
            const QImage seen = panelPicture();
            int count = 0;
            for (int y = 0; y < 230; ++y) {
                for (int x = 0; x < 360; ++x) {
                    // The flares at the top make the outline 9 points wider on both sides.
                    const bool beside = std::abs(x + 0.5 - 180) > width / 2 + 11 || y > height + 1;
                    count += beside && !light(seen.pixel(x, y));
                }
            }
            return count;
        };
        EXPECT_TRUE(waitFor([&] { return stray() == 0; })) << stray() << " pixels around the body of " << width;
    };
    clean(185, 58);
    session.moveTo(kOnNotch);
    clean(214, 108);
}

}  // namespace
