#include <xcb/xinput.h>

#include "X11Test.h"
#include "platform/linux/x11/SmoothScroll.h"
#include "platform/linux/x11/WindowTitles.h"
#include "platform/linux/x11/XTestKeys.h"

using namespace Qt::StringLiterals;

namespace {

using X11Music = X11Test;

TEST_F(X11Music, BrowsersAreKnownByTheirWindows) {
    WindowTitles titles(connection, loop);
    const QStringList browser{u"google-chrome"_s, u"chromium"_s};
    const auto title = [](xcb_window_t window, const QByteArray& text) {
        xcb_change_property(session().xcb(), XCB_PROP_MODE_REPLACE, window, session().atom("_NET_WM_NAME"),
                            session().atom("UTF8_STRING"), 8, uint32_t(text.size()), text.constData());
        session().sync();
    };
    const auto told = [&] {
        std::optional<QStringList> answer;
        titles.titles(browser, [&](const QStringList& list) { answer = list; });
        EXPECT_TRUE(waitFor([&] { return answer.has_value(); }));
        answer->sort();
        return *answer;
    };
    OtherWindow first(session(), {.instance = "chromium (/home)", .className = "Chromium"});
    const OtherWindow editor(session(), {.instance = "editor", .className = "Editor"});
    title(first.id(), "One — é");
    title(editor.id(), "Notes");
    EXPECT_FALSE(titles.isOpen(browser)) << "not watched yet";
    titles.watch(true);
    EXPECT_TRUE(waitFor([&] { return titles.isOpen(browser); }));
    title(first.openSecond(), QByteArray(5000, 'x'));
    EXPECT_TRUE(waitFor([&] { return told() == (QStringList{u"One — é"_s, QString(300, u'x')}); }));
    titles.watch(false);
    EXPECT_EQ(told(), QStringList());
    titles.watch(true);
    {
        const OtherWindow other(session(), {.instance = "x", .className = "Google-chrome"});
        EXPECT_TRUE(waitFor([&] { return told().size() == 2; }));
    }
}

// No device of a virtual server scrolls smoothly, so the event is made here.
TEST_F(X11Music, SmoothScrollingIsReadFromRawEvents) {
    struct {
        xcb_input_raw_button_press_event_t event{};
        uint32_t mask[2] = {1U << 1 | 1U << 3, 1U << 2};
        xcb_input_fp3232_t values[3] = {{7, 0}, {-3, 0x80000000}, {120, 0}},
                           raw[3] = {{8, 0}, {-2, 0x40000000}, {1, 0}};
    } sent;
    sent.event.valuators_len = 2;
    const std::pair<int, std::optional<double>> cases[] = {{1, 8}, {3, -1.75}, {34, 1}, {0, {}}, {2, {}}, {64, {}}};
    for (const auto& [number, value] : cases) EXPECT_EQ(rawValuator(sent.event, number), value) << number;
    // A pixel of the fingers' way is 8 units or 1; turned round for whom that is natural.
    for (const double increment : {120, 15, -15}) EXPECT_EQ(touchpadPointsPerUnit(increment) * increment, 15);
    EXPECT_EQ(touchpadPointsPerUnit(120) * 8, 1);
}

TEST_F(X11Music, MediaKeysArePressedForTheUser) {
    const auto extension = connection->extension(xcb_input_id);
    ASSERT_TRUE(extension);
    QByteArrayList pressed;
    const auto events = connection->handle([&](const xcb_generic_event_t& event) {
        const auto& raw = as<xcb_input_raw_key_press_event_t>(event);
        if (code(event) == XCB_GE_GENERIC && raw.event_type == XCB_INPUT_RAW_KEY_PRESS)
            pressed.append(QByteArray::number(raw.detail));
    });
    connection->selectInputOnRoot(XCB_INPUT_XI_EVENT_MASK_RAW_KEY_PRESS, true);
    XTestKeys keys(connection);
    ASSERT_TRUE(keys.isTrusted({}));
    for (const auto key : {MediaKeys::Key::playPause, MediaKeys::Key::next, MediaKeys::Key::previous})
        keys.press({}, key);
    // As xmodmap -pk lists XF86AudioPlay, XF86AudioNext and XF86AudioPrev.
    EXPECT_TRUE(waitFor([&] {
        return pressed == (QByteArrayList{"172", "171", "173"});
    })) << pressed.join(' ').toStdString();
}

}  // namespace
