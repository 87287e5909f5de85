#include <QElapsedTimer>

#include "desktop/DesktopTest.h"

namespace {

class Click : public DesktopTest {
 protected:
    void SetUp() override {
        ASSERT_NO_FATAL_FAILURE(start());
        below = windowBelow();
        ASSERT_TRUE(waitForEyes());
    }

    std::unique_ptr<OtherWindow> below;
};

TEST_F(Click, GoesThroughWhatIsTransparentAndDelightsTheCreature) {
    EXPECT_TRUE(waitFor([&] { return glimmet->inputRegion().isEmpty(); })) << "while the pointer is away";
    EXPECT_NE(windowAt(kOnNotch), glimmet->panel());
    session.moveTo(kOnNotch);
    ASSERT_TRUE(waitForBody(214, 108));
    // Beside the outline and below it, both inside the panel and inside the zone in which it keeps open.
    QList<int> through;
    for (const QPoint place : {QPoint(875, 60), QPoint(756, 125)}) {
        session.moveTo(place);
        ASSERT_TRUE(waitFor([&] { return windowAt(place) != glimmet->panel(); }));
        session.click(place);
        through.append(1);
        EXPECT_TRUE(waitFor([&] { return below->presses() == through; })) << place.x();
        EXPECT_TRUE(waitForBody(214, 108));
    }
    ASSERT_FALSE(confettiFlies());
    session.moveTo(kOnNotch);
    ASSERT_TRUE(waitFor([&] { return windowAt(kOnNotch) == glimmet->panel(); }));
    session.click(kOnNotch);
    EXPECT_TRUE(waitFor([&] { return confettiFlies(); }));
    EXPECT_TRUE(waitFor([&] { return !confettiFlies(); }));
    EXPECT_TRUE(waitForBody(214, 108)) << "it wobbles back";
    EXPECT_EQ(below->presses(), through);
    EXPECT_TRUE(below->active() && panelOnTop());
    session.moveTo(kFar);
    EXPECT_TRUE(waitFor([&] { return glimmet->inputRegion().isEmpty(); }));
}

TEST_F(Click, HeldAndMovedPushesItAsideUntilItComesHome) {
    pull(400);
    EXPECT_TRUE(waitFor([&] { return glimmet->panelFrame().x() == 576 + 280; })) << "no farther than this";
    session.release(1);
    QElapsedTimer since;
    since.start();
    session.moveTo(kFar);
    EXPECT_FALSE(confettiFlies()) << "a drag is no tap";
    EXPECT_TRUE(waitForBody(185, 58));
    EXPECT_NEAR(bodyIn(picture())->center(), 756 + 280, 1);
    EXPECT_TRUE(waitForFace([](const Face& face) { return face.left.gaze.x() < -2; })) << "it looks towards home";
    EXPECT_EQ(windowAt(kOnNotch + QPoint(280, 0)), glimmet->panel()) << "aside it keeps taking the pointer";

    EXPECT_TRUE(waitFor([&] { return glimmet->panelFrame().x() != 576 + 280; }, 8));
    EXPECT_GT(since.elapsed(), 4900);
    EXPECT_TRUE(waitFor([&] { return glimmet->panelFrame().x() == 576 && glimmet->inputRegion().isEmpty(); }));
    EXPECT_EQ(below->presses(), QList<int>());
    EXPECT_TRUE(below->active());
}

}  // namespace
