#include "desktop/DesktopTest.h"

namespace {

/// In lines: those that can be chosen, and the separators, which are lower.
constexpr double kMenuHeight = 10 + 3 * 0.3;

class Menu : public DesktopTest {
 protected:
    void SetUp() override {
        ASSERT_NO_FATAL_FAILURE(start());
        ASSERT_TRUE(waitForEyes());
    }

    /// Opens the menu with the right button and waits until it can be seen.
    QRect open() {
        session.glide(kOnNotch + QPoint(0, 30), kOnNotch, 3, 10);
        EXPECT_TRUE(waitFor([&] { return windowAt(kOnNotch) == glimmet->panel(); }));
        session.press(3);
        EXPECT_TRUE(waitFor([&] { return glimmet->menus().size() == 1; })) << "at once, not when the button comes up";
        letPass(0.05);  // no finger is faster
        session.release(3);
        return glimmet->menus().value(0);
    }

    /// Chooses the line whose middle is `lines` line heights above the menu's bottom.
    void choose(double lines) {
        const QRect menu = open();
        const QPoint item(menu.center().x(), menu.bottom() - int(menu.height() * lines / kMenuHeight));
        session.glide(kOnNotch, item, 10, 10);
        session.click(item);
        EXPECT_TRUE(waitFor([&] { return glimmet->menus().isEmpty(); }));
    }

    static constexpr double kHide = 1.5, kQuit = 0.5;
};

TEST_F(Menu, StaysClosedBesideTheCreatureAndGoesAwayUnchosen) {
    const auto below = windowBelow();
    // Just outside the zone of 14 points, though inside the panel.
    session.click({756 + 108, 20}, 3);
    EXPECT_TRUE(waitFor([&] { return below->presses() == QList<int>{3}; }));
    letPass(0.3);
    EXPECT_TRUE(glimmet->menus().isEmpty());

    EXPECT_TRUE(open().contains(kOnNotch + QPoint(2, 2))) << "at the pointer";
    EXPECT_EQ(below->presses().size(), 1);
    session.click(kFar);
    EXPECT_TRUE(waitFor([&] { return glimmet->menus().isEmpty(); }));
    session.moveTo(kFar + QPoint(10, 0));
    EXPECT_TRUE(waitForBody(185, 58)) << "nothing has changed";
    EXPECT_TRUE(below->active());
    choose(kQuit);
    EXPECT_TRUE(glimmet->ends());
}

TEST_F(Menu, HidesTheCreatureForGoodUntilATap) {
    choose(kHide);
    session.moveTo(kFar);
    EXPECT_TRUE(waitForBody(185, 37)) << "the camera housing and 5 points";
    EXPECT_TRUE(home.holds("glimmet.hidden", "bool true"));
    ASSERT_NO_FATAL_FAILURE(start());
    EXPECT_TRUE(waitForBody(185, 37));
    EXPECT_FALSE(hasOpenEyes(picture()));

    pull(100);
    session.release(1);
    EXPECT_EQ(glimmet->panelFrame().x(), 576) << "a hidden creature is not pushed aside";
    session.click(kOnNotch);
    EXPECT_TRUE(waitFor([&] { return confettiFlies(); }));
    EXPECT_TRUE(waitForBody(214, 108));
    EXPECT_TRUE(home.holds("glimmet.hidden", "bool false"));
}

}  // namespace
