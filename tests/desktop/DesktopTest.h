#pragma once

#include "desktop/Picture.h"
#include "desktop/Program.h"

/// A desktop of 1512 x 982 pixels with a window manager, a compositor and a light background; the pointer is far from
/// the creature.
class DesktopTest : public testing::Test {
 protected:
    DesktopTest();

    /// Starts the program in `home`, instead of the one that may run, and waits until it is up.
    void start(const QStringList& flags = {}, const Variables& variables = {});

    /// The screen's upper part, which the panel can reach.
    QImage picture() const { return session.screenshot(QRect(0, 0, 1512, 240)); }
    QImage panelPicture() const { return session.screenshot(QRect(576, 0, 360, 230)); }
    /// Waits until the body has this size in points; says what was there instead.
    testing::AssertionResult waitForBody(double width, double height, double seconds = 5);
    /// Waits until there is a face that meets `condition`.
    testing::AssertionResult waitForFace(const std::function<bool(const Face&)>& condition, double seconds = 5);
    testing::AssertionResult waitForEyes() {
        return waitForFace([](const Face& face) { return face.left.open() && face.right.open(); });
    }
    /// Waits until the panel looks like `wanted` around the body at rest, which has this size.
    testing::AssertionResult waitForSurroundings(double width, double height, const QImage& wanted);
    bool confettiFlies() const { return colourfulPixels(panelPicture()) > 40; }
    /// The topmost window, among the root's children, that would get a button pressed there.
    xcb_window_t windowAt(QPoint place) const;
    /// A light window all over the screen, with the panel above it again.
    std::unique_ptr<OtherWindow> windowBelow();
    /// Whether nothing visible lies over the panel.
    bool panelOnTop() const;
    /// Presses on the creature and moves the pointer by `distance`, with the button held.
    void pull(int distance);

    static constexpr QPoint kFar{200, 700};
    static constexpr QPoint kOnNotch{756, 30};
    static constexpr uint32_t kLight = 0xd8d8d8;

    XSession session{{1512, 982}};
    Home home;
    std::unique_ptr<Glimmet> glimmet;
};
