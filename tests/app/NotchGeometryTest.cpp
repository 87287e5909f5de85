#include <gtest/gtest.h>

#include "app/NotchGeometry.h"

namespace {

TEST(NotchGeometry, IsTheHousingOrElseAssumedAtTheTopOfTheMainScreenOrOfAny) {
    const Screen first{{0, 0, 1920, 1080}, {}, {}, true}, right{{1920, 0, 1280, 800}, {}, {}, false};
    const Screen notched{{-1512, 100, 1512, 982}, QRectF(-1512, 1044, 656, 38), QRectF(-656, 1044, 656, 38), false};
    const Screen half{{0, 0, 1000, 700}, QRectF(0, 660, 400, 40), {}, false};  // only one strip: no housing
    const struct {
        QList<Screen> screens;
        QRectF notch, panel;
        double top;
    } cases[] = {
        {{right, first}, {867.5, 1048, 185, 32}, {780, 850, 360, 230}, 1080},
        {{first, notched}, {-856, 1044, 200, 38}, {-936, 852, 360, 230}, 1082},
        {{half, right}, {407.5, 668, 185, 32}, {320, 470, 360, 230}, 700},
    };
    for (const auto& [screens, notch, panel, top] : cases) {
        const auto found = notchGeometry(screens);
        ASSERT_TRUE(found);
        EXPECT_EQ(found->notch, notch);
        EXPECT_EQ(found->panelFrame, panel);
        EXPECT_EQ(found->top, top);
    }
    EXPECT_FALSE(notchGeometry({}));
}

}  // namespace
