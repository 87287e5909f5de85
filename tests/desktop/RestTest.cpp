#include "desktop/DesktopTest.h"

namespace {

class Rest : public DesktopTest {
 protected:
    /// How many pixels of the panel, around a body at rest of this size, are not as `before`.
    int strays(double width, double height, const QImage& before) const {
        const QImage seen = panelPicture();
        int count = 0;
        for (int y = 0; y < seen.height(); ++y) {
            for (int x = 0; x < seen.width(); ++x) {
                // The flares at the top make the outline 9 points wider on both sides.
                const bool beside = std::abs(x + 0.5 - 180) > width / 2 + 11 || y > height + 1;
                count += beside && std::abs(qGray(seen.pixel(x, y)) - qGray(before.pixel(x, y))) > 24;
            }
        }
        return count;
    }
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
    EXPECT_TRUE(waitFor([&] { return strays(214, 108, open) == 0; })) << strays(214, 108, open);
    at(kFar, 185, 58);
    EXPECT_TRUE(waitFor([&] { return strays(185, 58, closed) == 0; })) << strays(185, 58, closed);
    EXPECT_TRUE(waitForEyes());
}

}  // namespace
