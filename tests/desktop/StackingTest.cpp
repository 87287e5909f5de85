#include <xcb/shape.h>

#include "desktop/DesktopTest.h"

namespace {

class Stacking : public DesktopTest {
 protected:
    static constexpr QRect kScreen{0, 0, 1512, 982};

    /// Whether a window lies over the panel.
    bool above(const OtherWindow& window) const {
        const QList<xcb_window_t> windows = session.stacking();
        return windows.indexOf(window.id()) > windows.indexOf(glimmet->panel());
    }
};

TEST_F(Stacking, ItLiesOverWhatIsManagedAndUnderWhatIsNot) {
    auto menu = std::make_unique<OtherWindow>(
        session, OtherWindow::Options{.geometry = {700, 0, 120, 40}, .overrideRedirect = true});
    ASSERT_NO_FATAL_FAILURE(start());
    EXPECT_TRUE(waitFor([&] { return above(*menu); })) << "even if it was there before";
    menu.reset();
    const auto fullScreen = windowBelow();
    EXPECT_TRUE(waitForBody(185, 58));

    OtherWindow dragPicture(session, {.geometry = {700, 0, 120, 40}, .overrideRedirect = true});
    letPass(0.5);
    EXPECT_TRUE(above(dragPicture));
    session.client().send("WM_PROTOCOLS", glimmet->panel(), session.atom("WM_DELETE_WINDOW"));
    letPass(0.5);
    EXPECT_NE(glimmet->panel(), XCB_NONE) << "it cannot be closed";
}

TEST_F(Stacking, NothingHeldIsSeenOnALockedScreen) {
    ASSERT_NO_FATAL_FAILURE(start({QStringLiteral("--bites")}));
    const auto below = windowBelow();
    session.moveTo(kOnNotch);
    ASSERT_TRUE(waitForBody(320, 152));
    const auto opensTo = [&](int height) {
        return waitFor([&] { return glimmet->inputRegion().boundingRect().height() == height; });
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
    ASSERT_TRUE(waitFor([&] { return glimmet->menus().size() == 1; }));
    {
        OtherWindow locker(session, {.geometry = kScreen.adjusted(1, 1, -1, -1), .overrideRedirect = true});
        EXPECT_TRUE(waitFor([&] { return glimmet->menus().isEmpty(); }));
        EXPECT_TRUE(above(locker));
        session.click(kOnNotch + QPoint(5, 0), 3);
        letPass(0.5);
        EXPECT_TRUE(glimmet->menus().isEmpty());
        EXPECT_TRUE(opensTo(108)) << "as with nothing held";
    }
    EXPECT_TRUE(opensTo(152));
}

}  // namespace
