#include "X11Test.h"
#include "platform/linux/Desktop.h"

namespace {
/// Sets a variable and puts the old value back.
class Variable {
 public:
    Variable(const char* name, const QByteArray& value)
        : name_(name), was_(qgetenv(name)), wasSet_(qEnvironmentVariableIsSet(name)) {
        value.isNull() ? qunsetenv(name) : qputenv(name, value);
    }
    ~Variable() { wasSet_ ? qputenv(name_, was_) : qunsetenv(name_); }

 private:
    const char* name_;
    QByteArray was_;
    bool wasSet_;
};

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
        const Variable platform("QT_QPA_PLATFORM", test.platform);
        const Variable display("DISPLAY", test.display);
        const Variable wayland("WAYLAND_DISPLAY", test.wayland);
        EXPECT_EQ(displayReachable(), test.reachable)
            << test.platform.constData() << ' ' << test.display.constData() << ' ' << test.wayland.constData();
    }
}

TEST_F(X11Desktop, ChoosesX11WhereTheUserDidNotChoose) {
    const struct {
        QByteArray platform, display, chosen;
    } cases[] = {{{}, ":1", "xcb"}, {{}, {}, {}}, {"wayland", ":1", "wayland"}};
    for (const auto& test : cases) {
        const Variable platform("QT_QPA_PLATFORM", test.platform);
        const Variable display("DISPLAY", test.display);
        EXPECT_EQ(choosePlatform(), test.platform != test.chosen);
        EXPECT_EQ(qgetenv("QT_QPA_PLATFORM"), test.chosen);
    }
}

TEST_F(X11Desktop, PartsWorkTogether) {
    class : public BackgroundQueue {
        void run(std::function<void()> job) override { job(); }
    } queue;
    Desktop desktop = makeDesktop(loop, queue);
    QPointF right;
    desktop.monitors->onRightMouseDown = [&](QPointF pointer) { right = pointer; };
    desktop.monitors->start();
    desktop.workspace->start();
    desktop.panelWindow->setFrame(toModel(QRectF(200, 0, 240, 120)));
    desktop.panelWindow->setInputRegion(QRect(0, 0, 240, 120));
    desktop.panelWindow->setOutline(QRect(0, 0, 240, 120));
    QPointF dragged;
    desktop.panelWindow->onDrag = [&](QPointF pointer) { dragged = pointer; };
    desktop.panelWindow->orderFrontRegardless();
    bool pressed = false;
    desktop.panelWindow->onPress = [&](PanelWindow::Button, QPointF, QPointF) { pressed = true; };
    ASSERT_TRUE(waitFor([&] {
        session().click(pixel({320, 60}), 3);
        letPass(0.05);
        return right == toModel(QPointF(320, 60));
    }));

    // The panel's drags need no monitors but end with the press.
    pressed = false;
    session().press(1);
    ASSERT_TRUE(waitFor([&] { return pressed; }));
    session().moveTo(pixel({400, 300}));
    EXPECT_TRUE(waitFor([&] { return dragged == toModel(QPointF(400, 300)); }));
    session().release(1);
}
}  // namespace
