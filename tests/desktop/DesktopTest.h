#pragma once

#include "desktop/Picture.h"
#include "desktop/Program.h"

/// A desktop of 1512 x 982 pixels with a window manager, a compositor and a light background; the pointer is far from
/// the creature.
class DesktopTest : public testing::Test {
 protected:
    DesktopTest() {
        // Sets the property from which compositors take the wallpaper, too.
        session.run(QStringLiteral("hsetroot -solid #d8d8d8"));
        session.startWindowManager();
        session.startCompositor();
        session.moveTo(kFar);
    }

    /// Starts the program in `home`, instead of the one that may run, and waits until it is up.
    void start(const QStringList& flags = {}, const Variables& variables = {}) {
        glimmet.reset();
        glimmet = std::make_unique<Glimmet>(&session, home, flags, variables);
        ASSERT_TRUE(glimmet->started());
    }

    /// The screen's upper part, which the panel can reach.
    QImage picture() const { return session.screenshot(QRect(0, 0, 1512, 240)); }
    QImage panelPicture() const { return session.screenshot(QRect(576, 0, 360, 230)); }
    /// Waits until the body has this size in points; says what was there instead.
    testing::AssertionResult waitForBody(double width, double height, double seconds = 5) const {
        std::optional<Body> body;
        const auto result = waitFor([&] { return (body = bodyIn(picture())) && body->is(width, height); }, seconds);
        if (result) return result;
        if (!body) return testing::AssertionFailure() << "there is no body";
        return testing::AssertionFailure() << "the body is " << body->width() << " x " << body->bottom << " instead of "
                                           << width << " x " << height;
    }
    testing::AssertionResult waitForEyes() const {
        return waitFor([this] { return hasOpenEyes(picture()); });
    }
    bool confettiFlies() const { return colourfulPixels(panelPicture()) > 40; }
    /// The topmost window, among the root's children, that would get a button pressed there.
    xcb_window_t windowAt(QPoint place) const {
        const auto cookie = xcb_translate_coordinates(session.xcb(), session.root(), session.root(), int16_t(place.x()),
                                                      int16_t(place.y()));
        const auto reply = owned(xcb_translate_coordinates_reply(session.xcb(), cookie, nullptr));
        return reply ? reply->child : XCB_NONE;
    }
    /// A light window all over the screen, with the panel above it again.
    std::unique_ptr<OtherWindow> windowBelow() const {
        auto window = std::make_unique<OtherWindow>(
            session, OtherWindow::Options{.geometry = {0, 0, 1512, 982}, .colour = 0xd8d8d8, .fullScreen = true});
        EXPECT_TRUE(waitFor([&] { return panelOnTop() && window->active(); }));
        return window;
    }
    /// Whether nothing visible lies over the panel.
    bool panelOnTop() const {
        const QList<xcb_window_t> windows = session.stacking();
        const qsizetype place = windows.indexOf(glimmet->panel());
        const QRect panel = glimmet->panelFrame();
        return place >= 0 && std::none_of(windows.begin() + place + 1, windows.end(), [&](xcb_window_t window) {
                   return session.client().visible(window) && session.client().frameOf(window).intersects(panel);
               });
    }
    /// Presses on the creature and moves the pointer by `distance`, with the button held.
    void pull(int distance) {
        session.glide(kOnNotch + QPoint(0, 60), kOnNotch, 5, 10);
        ASSERT_TRUE(waitFor([&] { return windowAt(kOnNotch) == glimmet->panel(); }));
        session.press(1);
        session.glide(kOnNotch, kOnNotch + QPoint(distance, 0), 20, 10);
    }

    static constexpr QPoint kFar{200, 700};
    static constexpr QPoint kOnNotch{756, 30};

    XSession session{{1512, 982}};
    Home home;
    std::unique_ptr<Glimmet> glimmet;
};
