#include <gtest/gtest.h>

#include "app/NotchGeometry.h"

namespace {

Screen plain(const QRectF& frame, bool main = false) {
    return {frame, {}, {}, main};
}

Screen notched(const QRectF& frame, double left, double right, double height) {
    const double low = frame.bottom() - height;
    return {frame, QRectF(frame.left(), low, left - frame.left(), height),
            QRectF(right, low, frame.right() - right, height), false};
}

TEST(NotchGeometry, IsAssumedAtTheTopOfTheMainScreen) {
    const auto g = notchGeometry({plain({1920, 0, 1280, 800}), plain({0, 0, 1920, 1080}, true)});
    ASSERT_TRUE(g);
    EXPECT_EQ(g->notch, QRectF(867.5, 1048, 185, 32));
    EXPECT_EQ(g->panelFrame, QRectF(780, 850, 360, 230));
    EXPECT_EQ(g->top, 1080);
}

TEST(NotchGeometry, AHousingBeatsTheMainScreen) {
    const auto g = notchGeometry({plain({0, 0, 1920, 1080}, true), notched({-1512, 100, 1512, 982}, -856, -656, 38)});
    ASSERT_TRUE(g);
    EXPECT_EQ(g->notch, QRectF(-856, 1044, 200, 38));
    EXPECT_EQ(g->panelFrame, QRectF(-936, 852, 360, 230));
    EXPECT_EQ(notchGeometry({notched({0, 0, 1512, 982}, 656, 856, 32)})->panelFrame, QRectF(576, 752, 360, 230));
}

TEST(NotchGeometry, MakesDoWithAnyScreen) {
    EXPECT_EQ(notchGeometry({plain({0, 0, 800, 600}), plain({800, 0, 1280, 800})})->top, 600);
    EXPECT_FALSE(notchGeometry({}));
    Screen half = plain({0, 0, 1000, 700}, true);
    half.auxiliaryTopLeftArea = QRectF(0, 660, 400, 40);  // only one strip: no housing
    EXPECT_EQ(notchGeometry({half})->notch, QRectF(407.5, 668, 185, 32));
}

}  // namespace
