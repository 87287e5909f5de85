#include <poll.h>

#include "X11Test.h"
#include "platform/linux/Desktop.h"
#include "platform/linux/x11/XSettings.h"
#include "support/Environment.h"

namespace {
class X11Server : public X11Test {
 protected:
    /// Changes a property that nobody else does.
    void change(int times) {
        for (int i = 0; i < times; ++i)
            xcb_change_property(session().xcb(), XCB_PROP_MODE_REPLACE, session().root(),
                                session().atom("_GLIMMET_TEST"), XCB_ATOM_CARDINAL, 32, 1, &i);
        session().sync();
    }
    void ask() { connection->ask(xcb_get_input_focus, xcb_get_input_focus_reply); }

    int events = 0;
    const Subscription handler =
        connection->handle([this, atom = session().atom("_GLIMMET_TEST")](const xcb_generic_event_t& event) {
            events += code(event) == XCB_PROPERTY_NOTIFY && as<xcb_property_notify_event_t>(event).atom == atom;
        });
};

TEST_F(X11Server, DeliversEventsThatWereReadAlongTheWayAndLeavesTheLoopItsTurnInAFlood) {
    connection->selectOnRoot(XCB_EVENT_MASK_PROPERTY_CHANGE, true);
    ask();
    for (const bool asks : {true, false}) {
        events = 0;
        change(1);
        pollfd socket{xcb_get_file_descriptor(connection->xcb()), POLLIN, 0};
        ASSERT_EQ(poll(&socket, 1, 5000), 1);
        xcb_no_operation(connection->xcb());
        asks ? ask() : connection->flush();  // both read the event and leave the socket silent
        EXPECT_EQ(events, 0) << "a handler runs from the loop, not inside a request";
        EXPECT_TRUE(waitFor([&] { return events == 1; }, 1)) << asks;
    }
    constexpr int flood = 5000;
    int before = flood;
    events = 0;
    change(flood);
    const TimerHandle turn = loop.every(0.001, [&] { before = std::min(before, events); });
    ASSERT_TRUE(waitFor([&] { return events == flood; }));
    EXPECT_LT(before, flood);
}

TEST_F(X11Server, ChoosesX11WhereTheUserDidNotChooseAndTellsWhetherThereIsADisplay) {
    const QByteArray here = session().display(), nowhere = ":9999", unset;
    const struct {
        QByteArray platform, display, wayland;
        bool reachable;
        QByteArray chosen;
    } cases[] = {
        {unset, here, unset, true, "xcb"},
        {"minimal:x=1", nowhere, unset, true, "minimal:x=1"},
        {"wayland", here, "wl-no", false, "wayland"},
        {"wayland;xcb", here, unset, true, "wayland;xcb"},
    };
    for (const auto& test : cases) {
        const EnvironmentVariable platform("QT_QPA_PLATFORM", test.platform);
        const EnvironmentVariable display("DISPLAY", test.display);
        const EnvironmentVariable wayland("WAYLAND_DISPLAY", test.wayland);
        const std::string row = (test.platform + ' ' + test.display + ' ' + test.wayland).toStdString();
        EXPECT_EQ(isDisplayReachable(), test.reachable) << row;
        EXPECT_EQ(choosePlatform(), test.platform != test.chosen) << row;
        EXPECT_EQ(qgetenv("QT_QPA_PLATFORM"), test.chosen) << row;
    }
}

TEST_F(X11Server, TellsTheTextsOfTheDesktop) {
    EXPECT_EQ(xSetting("Net/IconThemeName"), QString()) << "no desktop keeps any";
    OtherWindow owner(session(), {});
    xcb_set_selection_owner(session().xcb(), owner.id(), session().atom("_XSETTINGS_S0"), XCB_CURRENT_TIME);
    // A number, a colour and two texts, with paddings of three bytes, one and none.
    const QByteArray settings(
        "\0\0\0\0\1\0\0\0\4\0\0\0"
        "\0\0\5\0Xft/A\0\0\0\0\0\0\0\7\0\0\0"
        "\2\0\3\0C/c\0\0\0\0\0\1\2\3\4\5\6\7\10"
        "\1\0\10\0Net/Name\0\0\0\0\3\0\0\0One\0"
        "\1\0\21\0Net/IconThemeName\0\0\0\0\0\0\0\6\0\0\0Two \303\274\0\0",
        12 + 20 + 20 + 24 + 40);
    const auto keep = [&](const QByteArray& bytes) {
        const xcb_atom_t name = session().atom("_XSETTINGS_SETTINGS");
        xcb_change_property(session().xcb(), XCB_PROP_MODE_REPLACE, owner.id(), name, name, 8, uint32_t(bytes.size()),
                            bytes.constData());
        session().sync();
    };
    keep(settings);
    EXPECT_EQ(xSetting("Net/IconThemeName"), QStringLiteral("Two \u00fc"));
    EXPECT_EQ(xSetting("Net/Name"), QStringLiteral("One"));
    EXPECT_EQ(xSetting("Xft/A"), QString());
    for (qsizetype length = 0; length < settings.size() - 3; ++length) {
        keep(settings.first(length));
        EXPECT_EQ(xSetting("Net/IconThemeName"), QString()) << length;
    }
}
}  // namespace
