#include "desktop/DesktopTest.h"

namespace {

class ScreenChanges : public DesktopTest {
 protected:
    void xrandr(const char* arguments) const {
        QProcess process;
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.insert(QStringLiteral("DISPLAY"), QString::fromLatin1(session.display()));
        process.setProcessEnvironment(environment);
        process.start(QStringLiteral("xrandr"), QString::fromLatin1(arguments).split(u' '));
        ASSERT_TRUE(process.waitForFinished(5000)) << arguments;
        ASSERT_EQ(process.exitCode(), 0) << arguments << process.readAllStandardError().constData();
    }
    testing::AssertionResult waitForPanelAt(const Glimmet& glimmet, int x) const {
        const auto result = waitFor([&] { return glimmet.panelFrame() == QRect(x, 0, 360, 230); });
        if (result) return result;
        return testing::AssertionFailure() << "the panel is at " << glimmet.panelFrame().x() << " instead of " << x;
    }
};

TEST_F(ScreenChanges, TheCreatureMovesToTheNewTop) {
    Glimmet glimmet(session, home, {QStringLiteral("--trace")});
    ASSERT_TRUE(glimmet.started());
    ASSERT_TRUE(waitForPanelAt(glimmet, 576));

    // Pushed aside by hand, so that the change finds it away from home.
    session.glide({756, 200}, kOnNotch, 5, 10);
    ASSERT_TRUE(waitFor([&] { return windowAt(kOnNotch) == glimmet.panel(); }));
    session.press(1);
    session.glide(kOnNotch, kOnNotch + QPoint(200, 0), 10, 10);
    session.release(1);
    session.moveTo(kFar);
    ASSERT_TRUE(waitForBody(185, 58));
    ASSERT_TRUE(waitForPanelAt(glimmet, 576 + 200));
    ASSERT_EQ(glimmet.errors("trace:").size(), 2);

    xrandr("--newmode small 0 1280 0 0 1280 800 0 0 800");
    xrandr("--addmode screen small");
    xrandr("--output screen --mode small");
    EXPECT_TRUE(waitForPanelAt(glimmet, 460));
    EXPECT_TRUE(waitFor([&] { return windowAt({640, 30}) != glimmet.panel(); })) << "at home it takes no clicks";
    session.glide({400, 300}, {540, 20}, 5, 10);
    EXPECT_TRUE(waitFor([&] { return glimmet.errors("trace:").size() == 3; })) << "there is the zone's left edge";

    // For a while there may be no screen at all.
    xrandr("--fb 1280x800 --output screen --off");
    letPass(0.6);
    EXPECT_TRUE(glimmet.running());
    xrandr("--output screen --mode 1512x982");
    EXPECT_TRUE(waitForPanelAt(glimmet, 576));
    EXPECT_TRUE(glimmet.running());
}

TEST_F(ScreenChanges, AScreenBesideItsOwnIsNoReasonToMove) {
    xrandr("--setmonitor *own 756/200x600/150+0+0 screen");
    Glimmet glimmet(session, home, {QStringLiteral("--slide=100")});
    ASSERT_TRUE(glimmet.started());
    ASSERT_TRUE(waitForPanelAt(glimmet, 198 + 100));

    xrandr("--setmonitor other 756/200x600/150+756+0 none");
    letPass(1);
    EXPECT_TRUE(waitForPanelAt(glimmet, 198 + 100));

    xrandr("--delmonitor own");
    EXPECT_TRUE(waitForPanelAt(glimmet, 954)) << "an equal screen elsewhere is a new home, which ends a slide";
    xrandr("--setmonitor *own 756/200x600/150+0+0 screen");
    EXPECT_TRUE(waitForPanelAt(glimmet, 198)) << "the main screen is back";
}

}  // namespace
