#include "desktop/DesktopTest.h"

DesktopTest::DesktopTest() {
    // Sets the property from which compositors take the wallpaper, too.
    session.run(QStringLiteral("hsetroot -solid #d8d8d8"));
    session.startWindowManager();
    session.startCompositor();
    session.moveTo(kFar);
}

void DesktopTest::start(const QStringList& flags, const Variables& variables) {
    glimmet.reset();
    glimmet = std::make_unique<Glimmet>(&session, home, flags, variables);
    ASSERT_TRUE(glimmet->started());
}

testing::AssertionResult DesktopTest::waitForBody(double width, double height, double seconds) {
    std::optional<Body> body;
    const auto result = waitFor([&] { return (body = bodyIn(picture())) && body->is(width, height); }, seconds);
    if (result) return result;
    if (!body) return testing::AssertionFailure() << "there is no body";
    return testing::AssertionFailure() << "the body is " << body->width() << " x " << body->bottom << " instead of "
                                       << width << " x " << height;
}

testing::AssertionResult DesktopTest::waitForFace(const std::function<bool(const Face&)>& condition, double seconds) {
    std::optional<Face> face;
    const auto result = waitFor([&] { return (face = faceIn(picture())) && condition(*face); }, seconds);
    if (result) return result;
    if (!face) return testing::AssertionFailure() << "there is no face";
    return testing::AssertionFailure() << "the left eye is " << face->left.white.width() << " x "
                                       << face->left.white.height() << " and looks (" << face->left.gaze.x() << ", "
                                       << face->left.gaze.y() << ")";
}

testing::AssertionResult DesktopTest::waitForSurroundings(double width, double height, const QImage& wanted) {
    int strays = 0;
    const auto result = waitFor([&] {
        const QImage seen = panelPicture();
        strays = 0;
        for (int y = 0; y < seen.height(); ++y) {
            for (int x = 0; x < seen.width(); ++x) {
                // The flares at the top make the outline 9 points wider on both sides.
                const bool beside = std::abs(x + 0.5 - 180) > width / 2 + 11 || y > height + 1;
                strays += beside && std::abs(qGray(seen.pixel(x, y)) - qGray(wanted.pixel(x, y))) > 24;
            }
        }
        return strays == 0;
    });
    return result ? result
                  : testing::AssertionFailure()
                        << strays << " pixels around the body of " << width << " are not as they were";
}

xcb_window_t DesktopTest::windowAt(QPoint place) const {
    const auto cookie = xcb_translate_coordinates(session.xcb(), session.root(), session.root(), int16_t(place.x()),
                                                  int16_t(place.y()));
    const auto reply = owned(xcb_translate_coordinates_reply(session.xcb(), cookie, nullptr));
    return reply ? reply->child : XCB_NONE;
}

bool DesktopTest::panelOnTop() const {
    const QList<xcb_window_t> windows = session.stacking();
    const qsizetype place = windows.indexOf(glimmet->panel());
    const QRect panel = glimmet->panelFrame();
    return place >= 0 && std::none_of(windows.begin() + place + 1, windows.end(), [&](xcb_window_t window) {
               return session.client().visible(window) && session.client().frameOf(window).intersects(panel);
           });
}

std::unique_ptr<OtherWindow> DesktopTest::windowBelow() {
    auto window = std::make_unique<OtherWindow>(
        session, OtherWindow::Options{.geometry = {0, 0, 1512, 982}, .colour = kLight, .fullScreen = true});
    EXPECT_TRUE(waitFor([&] { return panelOnTop() && window->active(); }));
    return window;
}

void DesktopTest::pull(int distance) {
    session.glide(kOnNotch + QPoint(0, 60), kOnNotch, 5, 10);
    ASSERT_TRUE(waitFor([&] { return windowAt(kOnNotch) == glimmet->panel(); }));
    session.press(1);
    session.glide(kOnNotch, kOnNotch + QPoint(distance, 0), 20, 10);
}
