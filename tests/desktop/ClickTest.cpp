#include <QElapsedTimer>

#include "desktop/DesktopTest.h"

namespace {

class Click : public DesktopTest {
 protected:
    void SetUp() override {
        glimmet = std::make_unique<Glimmet>(session, home);
        ASSERT_TRUE(glimmet->started());
        below = windowBelow(*glimmet);
    }

    std::unique_ptr<Glimmet> glimmet;
    std::unique_ptr<OtherWindow> below;
};

TEST_F(Click, GoesThroughThePanelWhileThePointerIsAway) {
    ASSERT_TRUE(waitForEyes());
    EXPECT_TRUE(waitFor([&] { return glimmet->inputRegion().isEmpty(); }));
    EXPECT_NE(windowAt(kOnNotch), glimmet->panel());

    session.moveTo(kOnNotch);
    ASSERT_TRUE(waitFor([&] { return windowAt(kOnNotch) == glimmet->panel(); }));
    session.moveTo(kFar);
    EXPECT_TRUE(waitFor([&] { return glimmet->inputRegion().isEmpty(); }));
    EXPECT_NE(windowAt(kOnNotch), glimmet->panel());
}

TEST_F(Click, OnTheCreatureDelightsItAndDisturbsNobody) {
    session.moveTo(kOnNotch);
    ASSERT_TRUE(waitForBody(214, 108));
    ASSERT_FALSE(confettiFlies());

    session.click(kOnNotch);
    bool flattened = false;
    EXPECT_TRUE(waitFor([&] {
        const auto body = bodyIn(picture());
        flattened |= body && body->width() > 214 * 1.08 && body->bottom < 108 * 0.9;
        return flattened && confettiFlies();
    }));
    EXPECT_TRUE(waitForBody(214, 108)) << "it wobbles back";
    EXPECT_TRUE(waitFor([&] { return !confettiFlies(); }));
    EXPECT_EQ(below->presses(), QList<int>());
    EXPECT_TRUE(below->active());
    EXPECT_TRUE(panelOnTop(*glimmet));
}

TEST_F(Click, GoesThroughWhatIsTransparentEvenWhileItWatchesThePointer) {
    session.moveTo(kOnNotch);
    ASSERT_TRUE(waitForBody(214, 108));

    // Beside the outline and below it, both inside the panel and inside the zone in which it keeps open.
    for (const QPoint place : {QPoint(875, 60), QPoint(756, 125)}) {
        const int before = int(below->presses().size());
        session.moveTo(place);
        ASSERT_TRUE(waitFor([&] { return windowAt(place) != glimmet->panel(); }));
        session.click(place);
        EXPECT_TRUE(waitFor([&] { return below->presses().size() == before + 1; })) << place.x();
        EXPECT_TRUE(waitForBody(214, 108));
    }
    session.moveTo(kOnNotch);
    session.click(kOnNotch);
    EXPECT_TRUE(waitFor([&] { return confettiFlies(); })) << "and takes what is meant for it";
    EXPECT_EQ(below->presses().size(), 2);
}

TEST_F(Click, HeldAndMovedPushesItAsideUntilItComesHome) {
    const auto drag = [&](int distance) {
        session.moveTo(kOnNotch);
        EXPECT_TRUE(waitForBody(214, 108));
        session.press(1);
        session.glide(kOnNotch, kOnNotch + QPoint(distance, 0), 20, 10);
    };
    const int left = 576;

    drag(20);
    EXPECT_TRUE(waitFor([&] { return glimmet->panelFrame().x() == left + 20; }));
    session.release(1);
    EXPECT_TRUE(waitFor([&] { return glimmet->panelFrame().x() == left; }, 2)) << "a short way snaps back";
    EXPECT_FALSE(confettiFlies()) << "a drag is no tap";

    drag(400);
    EXPECT_TRUE(waitFor([&] { return glimmet->panelFrame().x() == left + 280; })) << "no farther than this";
    session.release(1);
    QElapsedTimer since;
    since.start();
    session.moveTo(kFar);
    EXPECT_TRUE(waitForBody(185, 58));
    EXPECT_NEAR(bodyIn(picture())->center(), 756 + 280, 1);
    EXPECT_TRUE(waitForFace([](const Face& face) { return face.left.gaze.x() < -2; })) << "it looks towards home";
    EXPECT_EQ(windowAt(kOnNotch + QPoint(280, 0)), glimmet->panel()) << "aside it keeps taking the pointer";

    EXPECT_TRUE(waitFor([&] { return glimmet->panelFrame().x() != left + 280; }, 8));
    EXPECT_GT(since.elapsed(), 4900);
    EXPECT_LT(since.elapsed(), 5600);
    EXPECT_TRUE(waitFor([&] { return glimmet->panelFrame().x() == left; }, 2));
    EXPECT_LT(since.elapsed(), 6600);
    EXPECT_TRUE(waitFor([&] { return glimmet->inputRegion().isEmpty(); }));
    EXPECT_EQ(below->presses(), QList<int>());
    EXPECT_TRUE(below->active());
}

}  // namespace
