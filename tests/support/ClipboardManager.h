#pragma once

#include "support/XSession.h"

/// A program of the desktop that keeps what others leave on the clipboard when they end, or does not answer them.
class ClipboardManager {
 public:
    ClipboardManager(const XSession& session, bool answers) : client_(session.display()), answers_(answers) {
        xcb_create_window(client_.xcb(), XCB_COPY_FROM_PARENT, window_, client_.root(), -10, -10, 1, 1, 0,
                          XCB_WINDOW_CLASS_INPUT_ONLY, XCB_COPY_FROM_PARENT, 0, nullptr);
        xcb_set_selection_owner(client_.xcb(), window_, client_.atom("CLIPBOARD_MANAGER"), XCB_CURRENT_TIME);
        client_.sync();  // another client's request may overtake one that is only sent
    }

    /// Does what it has been asked; to be called in the conditions that a test waits for.
    void work() {
        while (const auto event = owned(xcb_poll_for_event(client_.xcb()))) {
            const int code = event->response_type & 0x7f;
            if (code == XCB_SELECTION_REQUEST) asked(*reinterpret_cast<xcb_selection_request_event_t*>(event.get()));
            if (code == XCB_SELECTION_NOTIFY) take(*reinterpret_cast<xcb_selection_notify_event_t*>(event.get()));
        }
    }

    int requests = 0;
    QByteArray text;  ///< that it has taken over

 private:
    void asked(const xcb_selection_request_event_t& request) {
        if (request.target != client_.atom("SAVE_TARGETS")) return;
        ++requests;
        answer_ = {XCB_SELECTION_NOTIFY, 0, 0, 0, request.requestor, request.selection, request.target,
                   request.property};
        if (!answers_) return;
        xcb_convert_selection(client_.xcb(), window_, client_.atom("CLIPBOARD"), client_.atom("UTF8_STRING"),
                              client_.atom("TEXT"), XCB_CURRENT_TIME);
        xcb_flush(client_.xcb());
    }
    void take(const xcb_selection_notify_event_t& notify) {
        const auto cookie = xcb_get_property(client_.xcb(), false, window_, notify.property, XCB_ATOM_ANY, 0, 1 << 16);
        if (const auto reply = owned(xcb_get_property_reply(client_.xcb(), cookie, nullptr)))
            text = QByteArray(static_cast<const char*>(xcb_get_property_value(reply.get())),
                              xcb_get_property_value_length(reply.get()));
        xcb_send_event(client_.xcb(), false, answer_.requestor, 0, reinterpret_cast<const char*>(&answer_));
        xcb_flush(client_.xcb());
    }

    XClient client_;
    bool answers_;
    const xcb_window_t window_ = xcb_generate_id(client_.xcb());
    xcb_selection_notify_event_t answer_{};
};
