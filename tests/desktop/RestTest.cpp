#include "desktop/DesktopTest.h"

namespace {

class Rest : public DesktopTest {
 protected:
    void excite() {
        for (int times = 0; times < 2; ++times) {
            session.moveTo(kOnNotch);
            ASSERT_TRUE(waitForBody(214, 108));
            session.moveTo(kFar);
            // Back before it is closed, so that a spring is turned round in flight.
            ASSERT_TRUE(waitFor([&] { return bodyIn(picture())->bottom < 95; }));
        }
        session.moveTo(kOnNotch);
        ASSERT_TRUE(waitForBody(214, 108));
        session.click(kOnNotch);
        ASSERT_TRUE(waitFor([&] { return confettiFlies(); }));
        pull(60);
        session.glide(kOnNotch + QPoint(60, 0), kOnNotch, 10, 10);
        session.release(1);
        ASSERT_TRUE(waitFor([&] { return !confettiFlies(); }));
    }
};

// Only what changes is painted again, so whatever is forgotten stays on the screen.
TEST_F(Rest, LeavesNothingOnTheScreen) {
    const auto at = [&](QPoint pointer, double width, double height) {
        session.moveTo(pointer);
        EXPECT_TRUE(waitForBody(width, height));
        letPass(1);  // the springs come to rest long after they look like it
        return panelPicture();
    };
    ASSERT_NO_FATAL_FAILURE(start());
    const QImage open = at(kOnNotch, 214, 108), closed = at(kFar, 185, 58);
    ASSERT_NO_FATAL_FAILURE(excite());
    at(kOnNotch, 214, 108);
    EXPECT_TRUE(waitForSurroundings(214, 108, open));
    at(kFar, 185, 58);
    EXPECT_TRUE(waitForSurroundings(185, 58, closed));
    EXPECT_TRUE(waitForEyes());
}

}  // namespace
