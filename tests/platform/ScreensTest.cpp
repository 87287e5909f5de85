#include <gtest/gtest.h>

#include "platform/linux/QtScreens.h"
#include "platform/linux/ScreenCoordinates.h"
#include "support/ManualLoop.h"
#include "support/MemoryPorts.h"

namespace {
struct ScreensFixture : testing::Test {
    MemoryPreferences preferences;
    ManualClock clock;
    ManualLoop loop{clock};
    QtScreens screens{preferences, loop};
};

/// main() arranges the screens for this suite: the main one, 800 by 600 points of two pixels each, at (1000, 200), and
/// to its left one of 1000 by 1080 single pixels at (0, 0).
class TwoScreens : public ScreensFixture {
 protected:
    void SetUp() override {
        if (QGuiApplication::screens().size() != 2) GTEST_SKIP() << "needs a run of its own";
        ASSERT_EQ(nativeGeometry(*QGuiApplication::primaryScreen()), QRectF(1000, 200, 1600, 1200));
    }
};

TEST_F(TwoScreens, HaveTheModelsOriginAtTheMainOnesBottomLeftAndTheirOwnRatio) {
    for (const auto& [qt, model] : {std::pair(QRectF(0, 0, 1000, 1080), QRectF(-1000, -280, 1000, 1080)),
                                    std::pair(QRectF(1300, 200, 100.5, 30), QRectF(300, 570, 100.5, 30))}) {
        EXPECT_EQ(toModel(qt), model);
        EXPECT_EQ(toQt(model), qt);
        EXPECT_EQ(toModel(qt.topLeft()), QPointF(model.left(), model.bottom()));
        EXPECT_EQ(toQt(toModel(qt.topLeft())), qt.topLeft());
    }
    const std::pair<QPointF, QPointF> points[] = {{{1000, 200}, {0, 600}},
                                                  {{2599, 1399}, {799.5, 0.5}},
                                                  {{0, 500}, {-1000, 300}},
                                                  // On no screen: as if the main one went on.
                                                  {{5000, 5000}, {2000, -1800}}};
    for (const auto& [native, model] : points)
        EXPECT_EQ(nativeToModel(native), model) << native.x() << ',' << native.y();
}

TEST_F(TwoScreens, HaveTheUsersHousingWhereItWasWritten) {
    preferences.setText(QStringLiteral("glimmet.notch"), QStringLiteral("200x30"));
    EXPECT_EQ(screens.screens().size(), 2);
    for (const Screen& screen :
         {Screen{{0, 0, 800, 600}, QRectF(0, 570, 300, 30), QRectF(500, 570, 300, 30), true, {1000, 200, 1600, 1200}},
          Screen{{-1000, -280, 1000, 1080}, {}, {}, false, {0, 0, 1000, 1080}}})
        EXPECT_TRUE(screens.screens().contains(screen)) << screen.main;
    preferences.setText(QStringLiteral("glimmet.notchScreen"), QStringLiteral("B"));
    for (const Screen& screen : screens.screens())
        EXPECT_NE(screen.main, screen.auxiliaryTopLeftArea.has_value()) << "whichever is the main one today";
}

using OneScreen = ScreensFixture;
TEST_F(OneScreen, AnnouncesSeveralChangesOnceAndHasNoOddHousing) {
    int calls = 0;
    screens.onChange = [&] { ++calls; };
    QScreen* screen = QGuiApplication::primaryScreen();
    for (int i = 0; i < 2; ++i) Q_EMIT screen->geometryChanged({});
    Q_EMIT qGuiApp->primaryScreenChanged(screen);
    EXPECT_EQ(calls, 0) << "not in the middle of it";
    loop.advance(0.1);
    EXPECT_EQ(calls, 1);
    for (const char* odd : {"none", "200", "99999x9", "200x38x2", "-1x3", "200x0", "00x38", "2000x38"}) {
        preferences.setText(QStringLiteral("glimmet.notch"), QLatin1String(odd));
        EXPECT_FALSE(screens.screens().first().auxiliaryTopLeftArea) << odd;
    }
}
}  // namespace
