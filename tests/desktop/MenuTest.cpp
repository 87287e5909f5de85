#include "desktop/DesktopTest.h"

namespace {

/// The menu's lines that can be chosen, and the separators, which are lower.
constexpr double kLines = 10, kSeparators = 3;
constexpr double kMenuHeight = kLines + kSeparators * 0.3;

class Menu : public DesktopTest {
 protected:
    /// Opens the menu with the right button and waits until it can be seen.
    QRect open(const Glimmet& glimmet) {
        session.glide(kOnNotch + QPoint(0, 30), kOnNotch, 3, 10);
        EXPECT_TRUE(waitFor([&] { return windowAt(kOnNotch) == glimmet.panel(); }));
        session.press(3);
        EXPECT_TRUE(waitFor([&] { return glimmet.menus().size() == 1; })) << "at once, not when the button comes up";
        letPass(0.05);  // no finger is faster
        session.release(3);
        return glimmet.menus().value(0);
    }

    /// Chooses the line whose middle is `lines` line heights below the menu's top, or above its bottom if negative.
    void choose(const Glimmet& glimmet, double lines) {
        const QRect menu = open(glimmet);
        if (menu.isEmpty()) return;
        const double share = (lines < 0 ? kMenuHeight + lines : lines) / kMenuHeight;
        const QPoint item(menu.center().x(), menu.top() + int(menu.height() * share));
        session.glide(kOnNotch, item, 10, 10);
        session.click(item);
        EXPECT_TRUE(waitFor([&] { return glimmet.menus().isEmpty(); }));
    }

    static constexpr double kCritter = 0.5, kWeather = 1.5, kHide = -1.5, kQuit = -0.5;
};

TEST_F(Menu, OpensOnTheCreatureAndDoesWhatIsChosen) {
    Glimmet glimmet(session, home);
    ASSERT_TRUE(glimmet.started());
    ASSERT_TRUE(waitForEyes());

    choose(glimmet, kWeather);
    session.moveTo(kFar);
    EXPECT_TRUE(waitForBody(185, 40));
    choose(glimmet, kCritter);
    session.moveTo(kFar);
    EXPECT_TRUE(waitForBody(185, 58));
    EXPECT_TRUE(waitForEyes());
    choose(glimmet, kQuit);
    ASSERT_TRUE(waitFor([&] { return !glimmet.running(); }));
    EXPECT_EQ(glimmet.exitCode(), 0);
}

TEST_F(Menu, StaysClosedBesideTheCreatureAndGoesAwayUnchosen) {
    Glimmet glimmet(session, home);
    ASSERT_TRUE(glimmet.started());
    const auto below = windowBelow(glimmet);
    ASSERT_TRUE(waitForEyes());

    // Just outside the zone of 14 points, though inside the panel.
    session.click({756 + 108, 20}, 3);
    EXPECT_TRUE(waitFor([&] { return below->presses() == QList<int>{3}; }));
    letPass(0.3);
    EXPECT_TRUE(glimmet.menus().isEmpty());

    const QRect menu = open(glimmet);
    EXPECT_TRUE(menu.contains(kOnNotch + QPoint(2, 2))) << "at the pointer";
    EXPECT_EQ(below->presses().size(), 1);
    session.click(kFar);
    EXPECT_TRUE(waitFor([&] { return glimmet.menus().isEmpty(); }));
    session.moveTo(kFar + QPoint(10, 0));
    EXPECT_TRUE(waitForBody(185, 58)) << "nothing has changed";
    EXPECT_TRUE(below->active());
}

TEST_F(Menu, HidesTheCreatureForGoodUntilATap) {
    {
        Glimmet glimmet(session, home);
        ASSERT_TRUE(glimmet.started());
        ASSERT_TRUE(waitForEyes());
        choose(glimmet, kHide);
        session.moveTo(kFar);
        EXPECT_TRUE(waitForBody(185, 37)) << "the camera housing and 5 points";
        EXPECT_TRUE(waitFor([&] { return home.preferences().contains("glimmet.hidden = bool true\n"); }));
    }
    Glimmet glimmet(session, home);
    ASSERT_TRUE(glimmet.started());
    EXPECT_TRUE(waitForBody(185, 37));
    EXPECT_FALSE(faceIn(picture()));

    session.moveTo(kOnNotch);
    ASSERT_TRUE(waitFor([&] { return windowAt(kOnNotch) == glimmet.panel(); }));
    // A hidden creature is not pushed aside.
    session.press(1);
    session.glide(kOnNotch, kOnNotch + QPoint(100, 0), 10, 10);
    session.release(1);
    EXPECT_EQ(glimmet.panelFrame().x(), 576);

    session.click(kOnNotch);
    EXPECT_TRUE(waitFor([&] { return confettiFlies(); }));
    EXPECT_TRUE(waitForBody(214, 108));
    EXPECT_TRUE(waitForEyes());
    EXPECT_TRUE(waitFor([&] { return home.preferences().contains("glimmet.hidden = bool false\n"); }));
}

}  // namespace
