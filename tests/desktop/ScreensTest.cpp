#include "desktop/DesktopTest.h"

namespace {

class ScreenChanges : public DesktopTest {};

TEST_F(ScreenChanges, TheCreatureMovesToTheNewTop) {
    const auto xrandr = [&](const char* words) { session.run(QStringLiteral("xrandr ") + QLatin1String(words)); };
    const auto waitForPanelAt = [&](int x) {
        const auto result = waitFor([&] { return glimmet->panelFrame() == QRect(x, 0, 360, 230); });
        return result ? result : testing::AssertionFailure() << "the panel is at " << glimmet->panelFrame().x();
    };
    ASSERT_NO_FATAL_FAILURE(start({QStringLiteral("--trace")}));
    ASSERT_TRUE(waitForPanelAt(576));
    // Pushed aside by hand, so that the change finds it away from home.
    pull(200);
    session.release(1);
    session.moveTo(kFar);
    ASSERT_TRUE(waitForBody(185, 58));
    ASSERT_TRUE(waitForPanelAt(576 + 200));
    ASSERT_EQ(glimmet->errors("trace:").size(), 2);

    xrandr("--newmode small 0 1280 0 0 1280 800 0 0 800");
    xrandr("--addmode screen small");
    xrandr("--output screen --mode small");
    EXPECT_TRUE(waitForPanelAt(460));
    EXPECT_TRUE(waitFor([&] { return windowAt({640, 30}) != glimmet->panel(); })) << "at home it takes no clicks";
    session.glide({400, 300}, {540, 20}, 5, 10);
    EXPECT_TRUE(waitFor([&] { return glimmet->errors("trace:").size() == 3; })) << "there is the zone's left edge";

    // For a while there may be no screen at all.
    xrandr("--fb 1280x800 --output screen --off");
    letPass(0.6);
    EXPECT_TRUE(glimmet->running());
    xrandr("--output screen --mode 1512x982");
    EXPECT_TRUE(waitForPanelAt(576));
}

}  // namespace
