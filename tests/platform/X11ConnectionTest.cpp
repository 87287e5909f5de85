#include "X11Test.h"

namespace {
using X11Requests = X11Test;

TEST_F(X11Requests, DeliverEventsThatCameBeforeAnAnswer) {
    int events = 0;
    const auto handler =
        connection->handle([&](const xcb_generic_event_t& event) { events += code(event) == XCB_PROPERTY_NOTIFY; });
    connection->selectOnRoot(XCB_EVENT_MASK_PROPERTY_CHANGE, true);
    connection->ask(xcb_get_input_focus, xcb_get_input_focus_reply);
    letPass(0.1);
    events = 0;

    const uint32_t value = 1;
    xcb_change_property(session().xcb(), XCB_PROP_MODE_REPLACE, session().root(), session().atom("_GLIMMET_TEST"),
                        XCB_ATOM_CARDINAL, 32, 1, &value);
    session().sync();
    // The event waits in front of this answer, and reading both leaves the socket silent.
    EXPECT_EQ(connection->values(session().root(), "_GLIMMET_TEST", XCB_ATOM_CARDINAL), std::vector<uint32_t>{1});
    EXPECT_EQ(events, 0) << "a handler runs from the loop, not inside a request";
    EXPECT_TRUE(waitFor([&] { return events == 1; }, 1));
}

TEST_F(X11Requests, SurviveWindowsThatAreGone) {
    constexpr xcb_window_t gone = 0x7fffff;
    EXPECT_TRUE(connection->values(gone, "WM_CLASS", XCB_ATOM_ANY).empty());
    EXPECT_TRUE(connection->bytes(gone, "WM_CLASS", XCB_ATOM_ANY).isEmpty());
    EXPECT_EQ(connection->ask(xcb_get_geometry, xcb_get_geometry_reply, gone), nullptr);
}

TEST_F(X11Requests, HandlersMayGoWhileAnEventIsHandled) {
    int first = 0, second = 0;
    Observation handler, other;
    handler = connection->handle([&](const xcb_generic_event_t& event) {
        if (code(event) != XCB_PROPERTY_NOTIFY) return;
        ++first;
        handler.reset();
        other.reset();
    });
    other = connection->handle([&](const xcb_generic_event_t& event) { second += code(event) == XCB_PROPERTY_NOTIFY; });
    connection->selectOnRoot(XCB_EVENT_MASK_PROPERTY_CHANGE, true);
    connection->ask(xcb_get_input_focus, xcb_get_input_focus_reply);
    for (int i = 0; i < 2; ++i) {
        xcb_delete_property(session().xcb(), session().root(), session().atom("_GLIMMET_TEST"));
        xcb_change_property(session().xcb(), XCB_PROP_MODE_REPLACE, session().root(), session().atom("_GLIMMET_TEST"),
                            XCB_ATOM_CARDINAL, 32, 1, &i);
    }
    session().sync();
    ASSERT_TRUE(waitFor([&] { return first > 0; }));
    letPass(0.1);
    EXPECT_EQ(first, 1);
    EXPECT_EQ(second, 0);
}
}  // namespace
