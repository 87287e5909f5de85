#include <poll.h>

#include "X11Test.h"

namespace {
using X11Requests = X11Test;

TEST_F(X11Requests, DeliverEventsThatWereReadAlongTheWay) {
    int events = 0;
    const xcb_atom_t atom = session().atom("_GLIMMET_TEST");
    const auto handler = connection->handle([&](const xcb_generic_event_t& event) {
        events += code(event) == XCB_PROPERTY_NOTIFY && as<xcb_property_notify_event_t>(event).atom == atom;
    });
    connection->selectOnRoot(XCB_EVENT_MASK_PROPERTY_CHANGE, true);
    connection->ask(xcb_get_input_focus, xcb_get_input_focus_reply);
    for (const bool asks : {true, false}) {
        events = 0;
        const uint32_t value = 1;
        xcb_change_property(session().xcb(), XCB_PROP_MODE_REPLACE, session().root(), atom, XCB_ATOM_CARDINAL, 32, 1,
                            &value);
        session().sync();
        pollfd socket{xcb_get_file_descriptor(connection->xcb()), POLLIN, 0};
        ASSERT_EQ(poll(&socket, 1, 5000), 1);
        xcb_no_operation(connection->xcb());
        // Both read the event and leave the socket silent.
        if (asks)
            connection->ask(xcb_get_input_focus, xcb_get_input_focus_reply);
        else
            connection->flush();
        EXPECT_EQ(events, 0) << "a handler runs from the loop, not inside a request";
        EXPECT_TRUE(waitFor([&] { return events == 1; }, 1)) << asks;
    }
}

TEST_F(X11Requests, LeaveTheLoopItsTurnInAFlood) {
    constexpr int flood = 5000;
    int events = 0, before = flood;
    const auto handler = connection->handle([&](const auto& event) { events += code(event) == XCB_PROPERTY_NOTIFY; });
    connection->selectOnRoot(XCB_EVENT_MASK_PROPERTY_CHANGE, true);
    connection->ask(xcb_get_input_focus, xcb_get_input_focus_reply);
    for (int i = 0; i < flood; ++i)
        xcb_change_property(session().xcb(), XCB_PROP_MODE_REPLACE, session().root(), session().atom("_GLIMMET_TEST"),
                            XCB_ATOM_CARDINAL, 32, 1, &i);
    session().sync();
    const TimerHandle turn = loop.every(0.001, [&] { before = std::min(before, events); });
    ASSERT_TRUE(waitFor([&] { return events >= flood; }));
    EXPECT_LT(before, flood);
}

}  // namespace
