#include "desktop/DesktopTest.h"

namespace {

class Click : public DesktopTest {};

TEST_F(Click, GoesThroughWhatIsTransparentAndDelightsTheCreature) {
    ASSERT_NO_FATAL_FAILURE(start());
    const auto below = windowBelow();
    ASSERT_TRUE(waitForEyes());
    EXPECT_TRUE(waitFor([&] { return glimmet->inputRegion().isEmpty(); })) << "while the pointer is away";
    EXPECT_NE(windowAt(kOnNotch), glimmet->panel());
    // A program can put the pointer there without any input.
    xcb_warp_pointer(session.xcb(), XCB_NONE, session.root(), 0, 0, 0, 0, kOnNotch.x(), kOnNotch.y());
    session.sync();
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
    pull(3);  // a hand is never quite still
    session.release(1);
    EXPECT_TRUE(waitFor([&] { return confettiFlies(); }));
    EXPECT_TRUE(waitFor([&] { return !confettiFlies(); }));
    EXPECT_TRUE(waitForBody(214, 108)) << "it wobbles back";
    EXPECT_EQ(below->presses(), through);
    EXPECT_TRUE(below->active() && panelOnTop());
    session.moveTo(kFar);
    EXPECT_TRUE(waitFor([&] { return glimmet->inputRegion().isEmpty(); }));
}

}  // namespace
