#include "X11Test.h"
#include "platform/linux/x11/XSettings.h"

namespace {

class X11Settings : public X11Test {};

TEST_F(X11Settings, TellTheTextsOfTheDesktop) {
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
