#include "X11Test.h"
#include "platform/linux/Desktop.h"
#include "support/Environment.h"

namespace {
using X11Desktop = X11Test;

TEST_F(X11Desktop, TellsWhetherADisplayCanBeReached) {
    const QByteArray here = session().display(), nowhere = ":9999", unset;
    const struct {
        QByteArray platform, display, wayland;
        bool reachable;
    } cases[] = {
        {"xcb", here, unset, true},        {"xcb", nowhere, unset, false},     {unset, here, unset, true},
        {unset, unset, unset, false},      {"offscreen", unset, unset, true},  {"minimal:x=1", nowhere, unset, true},
        {"wayland", here, "wl-no", false}, {"wayland;xcb", here, unset, true},
    };
    for (const auto& test : cases) {
        const EnvironmentVariable platform("QT_QPA_PLATFORM", test.platform);
        const EnvironmentVariable display("DISPLAY", test.display);
        const EnvironmentVariable wayland("WAYLAND_DISPLAY", test.wayland);
        EXPECT_EQ(displayReachable(), test.reachable)
            << test.platform.constData() << ' ' << test.display.constData() << ' ' << test.wayland.constData();
    }
}

TEST_F(X11Desktop, ChoosesX11WhereTheUserDidNotChoose) {
    const struct {
        QByteArray platform, display, chosen;
    } cases[] = {{{}, ":1", "xcb"}, {{}, {}, {}}, {"wayland", ":1", "wayland"}};
    for (const auto& test : cases) {
        const EnvironmentVariable platform("QT_QPA_PLATFORM", test.platform);
        const EnvironmentVariable display("DISPLAY", test.display);
        EXPECT_EQ(choosePlatform(), test.platform != test.chosen);
        EXPECT_EQ(qgetenv("QT_QPA_PLATFORM"), test.chosen);
    }
}
}  // namespace
