#include "desktop/DesktopTest.h"

DesktopTest::DesktopTest(Compositor compositor) : session({.size = {1512, 982}}) {
    paintRoot();
    session.startWindowManager();
    if (compositor == Compositor::running) session.startCompositor();
    session.moveTo(kFar);
}

// Compositors take the wallpaper from a property, since they cannot read the root's own.
void DesktopTest::paintRoot() {
    xcb_connection_t* xcb = session.xcb();
    const xcb_window_t root = session.root();
    const xcb_pixmap_t pixmap = xcb_generate_id(xcb);
    xcb_create_pixmap(xcb, 24, pixmap, root, 1, 1);
    const xcb_gcontext_t gc = xcb_generate_id(xcb);
    xcb_create_gc(xcb, gc, pixmap, XCB_GC_FOREGROUND, &kLight);
    const xcb_rectangle_t all{0, 0, 1, 1};
    xcb_poly_fill_rectangle(xcb, pixmap, gc, 1, &all);
    xcb_change_window_attributes(xcb, root, XCB_CW_BACK_PIXMAP, &pixmap);
    xcb_change_property(xcb, XCB_PROP_MODE_REPLACE, root, session.atom("_XROOTPMAP_ID"), XCB_ATOM_PIXMAP, 32, 1,
                        &pixmap);
    xcb_clear_area(xcb, false, root, 0, 0, 0, 0);
    session.sync();
}

testing::AssertionResult DesktopTest::waitForBody(double width, double height, double seconds) {
    std::optional<Body> body;
    const auto result = waitFor(
        [&] {
            body = bodyIn(picture());
            return body && body->is(width, height);
        },
        seconds);
    if (result) return result;
    if (!body) return testing::AssertionFailure() << "there is no body";
    return testing::AssertionFailure() << "the body is " << body->width() << " x " << body->bottom << " instead of "
                                       << width << " x " << height;
}

testing::AssertionResult DesktopTest::waitForFace(const std::function<bool(const Face&)>& condition, double seconds) {
    std::optional<Face> face;
    const auto result = waitFor(
        [&] {
            face = faceIn(picture());
            return face && condition(*face);
        },
        seconds);
    if (result) return result;
    if (!face) return testing::AssertionFailure() << "there is no face";
    return testing::AssertionFailure() << "the left eye is " << face->left.white.width() << " x "
                                       << face->left.white.height() << " and looks (" << face->left.gaze.x() << ", "
                                       << face->left.gaze.y() << ")";
}

xcb_window_t DesktopTest::windowAt(QPoint place) const {
    const auto cookie = xcb_translate_coordinates(session.xcb(), session.root(), session.root(), int16_t(place.x()),
                                                  int16_t(place.y()));
    const std::unique_ptr<xcb_translate_coordinates_reply_t, decltype(&free)> reply(
        xcb_translate_coordinates_reply(session.xcb(), cookie, nullptr), &free);
    return reply ? reply->child : XCB_NONE;
}

bool DesktopTest::panelOnTop(const Glimmet& glimmet) const {
    const QList<xcb_window_t> windows = session.stacking();
    const qsizetype place = windows.indexOf(glimmet.panel());
    const QRect panel = glimmet.panelFrame();
    return place >= 0 && std::none_of(windows.begin() + place + 1, windows.end(), [&](xcb_window_t window) {
               return visible(session, window) && frameOf(session, window).intersects(panel);
           });
}

std::unique_ptr<OtherWindow> DesktopTest::windowBelow(const Glimmet& glimmet) {
    auto window = std::make_unique<OtherWindow>(
        session, OtherWindow::Options{.geometry = {0, 0, 1512, 982}, .colour = kLight, .fullScreen = true});
    EXPECT_TRUE(waitFor([&] { return panelOnTop(glimmet); }));
    EXPECT_TRUE(waitFor([&] { return window->active(); }));
    return window;
}
