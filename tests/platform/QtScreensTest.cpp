#include <gtest/gtest.h>

#include <QGuiApplication>
#include <QScreen>

#include "platform/linux/QtScreens.h"
#include "support/ManualLoop.h"
#include "support/MemoryPorts.h"

namespace {

const QString kNotch = QStringLiteral("glimmet.notch");

struct ScreensFixture {
    ManualClock clock;
    ManualLoop loop{clock};
    MemoryPreferences preferences;
    QtScreens screens{preferences, loop};
};

/// The offscreen platform's one screen has 800 by 800 points.
class QtScreensTest : public testing::Test, protected ScreensFixture {
 protected:
    void SetUp() override {
        if (QGuiApplication::screens().size() != 1 || QGuiApplication::primaryScreen()->size() != QSize(800, 800))
            GTEST_SKIP() << "needs a run of its own";
    }
};

TEST_F(QtScreensTest, PutTheUsersHousingInTheMiddleOfTheTop) {
    const QRectF frame(0, 0, 800, 800);
    EXPECT_EQ(screens.screens(), QList<Screen>({{frame, {}, {}, true}}));

    preferences.setText(kNotch, QStringLiteral("185x32"));
    const Screen wanted{frame, QRectF(0, 768, 307.5, 32), QRectF(492.5, 768, 307.5, 32), true};
    EXPECT_EQ(screens.screens(), QList<Screen>({wanted}));

    for (const char* none : {"none", "", "185", "185x", "x32", "0x0", "185x0", "00x32", "-185x32", "185x-32", "185x32 ",
                             "800x32", "9999x32", "99999999999x32", "185X32", "1e2x32", "185.5x32"}) {
        preferences.setText(kNotch, QString::fromLatin1(none));
        EXPECT_FALSE(screens.screens()[0].auxiliaryTopLeftArea) << none;
        EXPECT_FALSE(screens.screens()[0].auxiliaryTopRightArea) << none;
    }
}

TEST_F(QtScreensTest, AnnounceSeveralChangesOnce) {
    int calls = 0;
    screens.onChange = [&] { ++calls; };
    QScreen* screen = QGuiApplication::primaryScreen();
    const auto change = [&] {
        Q_EMIT screen->geometryChanged({});
        Q_EMIT qGuiApp->primaryScreenChanged(screen);
        Q_EMIT screen->geometryChanged({});
    };
    change();
    EXPECT_EQ(calls, 0) << "not in the middle of it";
    loop.advance(0.1);
    EXPECT_EQ(calls, 1);
    change();
    loop.advance(0.1);
    EXPECT_EQ(calls, 2);
    loop.advance(10);
    EXPECT_EQ(calls, 2);
}

TEST_F(QtScreensTest, AreSilentOnceGone) {
    int calls = 0;
    {
        QtScreens gone(preferences, loop);
        gone.onChange = [&] { ++calls; };
        Q_EMIT QGuiApplication::primaryScreen()->geometryChanged({});
    }
    Q_EMIT QGuiApplication::primaryScreen()->geometryChanged({});
    loop.advance(1);
    EXPECT_EQ(calls, 0);
}

/// main() arranges the screens for this suite as for the other of that name.
class TwoScreensFound : public testing::Test, protected ScreensFixture {
 protected:
    void SetUp() override {
        if (QGuiApplication::screens().size() != 2) GTEST_SKIP() << "needs a run of its own";
    }
};

TEST_F(TwoScreensFound, InTheModelsCoordinatesWithTheHousingOnTheMainOne) {
    preferences.setText(kNotch, QStringLiteral("200x30"));
    const Screen main{QRectF(0, 0, 800, 600), QRectF(0, 570, 300, 30), QRectF(500, 570, 300, 30), true};
    const Screen left{QRectF(-1000, -280, 1000, 1080), {}, {}, false};
    const QList<Screen> found = screens.screens();
    ASSERT_EQ(found.size(), 2);
    EXPECT_TRUE(found.contains(main));
    EXPECT_TRUE(found.contains(left));
}

}  // namespace
