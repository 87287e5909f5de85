#include "desktop/DesktopTest.h"

namespace {

class Stacking : public DesktopTest {};

TEST_F(Stacking, ItComesBackOverWhateverCoversIt) {
    Glimmet glimmet(session, home);
    ASSERT_TRUE(glimmet.started());

    OtherWindow fullScreen(session, {.geometry = {0, 0, 1512, 982}, .colour = kLight, .fullScreen = true});
    EXPECT_TRUE(waitFor([&] { return panelOnTop(glimmet); })) << "a full-screen window";
    EXPECT_TRUE(waitForBody(185, 58));

    OtherWindow tooltip(session, {.geometry = {700, 0, 120, 40}, .colour = kLight, .overrideRedirect = true});
    EXPECT_TRUE(waitFor([&] { return panelOnTop(glimmet); })) << "a window that no manager knows";
    const uint32_t above = XCB_STACK_MODE_ABOVE;
    xcb_configure_window(session.xcb(), tooltip.id(), XCB_CONFIG_WINDOW_STACK_MODE, &above);
    EXPECT_TRUE(waitFor([&] { return panelOnTop(glimmet); })) << "and its return";
    EXPECT_TRUE(waitForBody(185, 58));
    EXPECT_TRUE(waitFor([&] { return fullScreen.active(); }));
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
        const QImage seen = panelPicture();
        int stray = 0;
        for (int y = 0; y < 230; ++y) {
            for (int x = 0; x < 360; ++x) {
                // The flares at the top make the outline 9 points wider on both sides.
                const bool beside = std::abs(x + 0.5 - 180) > width / 2 + 11 || y > height + 1;
                stray += beside && !light(seen.pixel(x, y));
            }
        }
        EXPECT_EQ(stray, 0) << "around the body of " << width << " x " << height;
    };
    clean(185, 58);
    session.moveTo(kOnNotch);
    clean(214, 108);

    // With one there is a soft shadow below the body, and no longer a sharp edge.
    const auto shadow = [&] {
        const QImage seen = session.screenshot({756, 0, 1, 230});
        return light(seen.pixel(0, 229)) && !light(seen.pixel(0, 62)) && qRed(seen.pixel(0, 54)) < 60;
    };
    session.moveTo(kFar);
    clean(185, 58);
    ASSERT_FALSE(shadow());
    session.startCompositor();
    ASSERT_TRUE(waitForBody(185, 58)) << "a compositor that comes later is welcome";
    EXPECT_TRUE(waitFor(shadow));
    letPass(0.3);
    EXPECT_TRUE(shadow());
    session.stopCompositor();
    clean(185, 58);
}

}  // namespace
