#pragma once

#include <cstdlib>

#include "support/XSession.h"

/// A program of the desktop that keeps what others leave on the clipboard when they end.
class ClipboardManager {
 public:
    explicit ClipboardManager(const XSession& session, bool answers = true)
        : session_(session), answers_(answers), connection_(xcb_connect(session.display().constData(), nullptr)) {
        window_ = xcb_generate_id(connection_);
        xcb_create_window(connection_, XCB_COPY_FROM_PARENT, window_, session.root(), -10, -10, 1, 1, 0,
                          XCB_WINDOW_CLASS_INPUT_ONLY, XCB_COPY_FROM_PARENT, 0, nullptr);
        xcb_set_selection_owner(connection_, window_, session.atom("CLIPBOARD_MANAGER"), XCB_CURRENT_TIME);
        // Its answer says that the server knows the manager; another client's request may overtake one that is only
        // sent.
        std::free(xcb_get_selection_owner_reply(
            connection_, xcb_get_selection_owner(connection_, session.atom("CLIPBOARD_MANAGER")), nullptr));
    }
    ~ClipboardManager() { xcb_disconnect(connection_); }
    ClipboardManager(const ClipboardManager&) = delete;
    ClipboardManager& operator=(const ClipboardManager&) = delete;

    /// Does what it has been asked; to be called in the conditions that a test waits for.
    void work() {
        while (xcb_generic_event_t* event = xcb_poll_for_event(connection_)) {
            const int code = event->response_type & 0x7f;
            if (code == XCB_SELECTION_REQUEST) asked(*reinterpret_cast<xcb_selection_request_event_t*>(event));
            if (code == XCB_SELECTION_NOTIFY) take(*reinterpret_cast<xcb_selection_notify_event_t*>(event));
            std::free(event);
        }
    }

    int requests = 0;
    QByteArray kept;  ///< the text it has taken over

 private:
    void asked(const xcb_selection_request_event_t& request) {
        if (request.target != session_.atom("SAVE_TARGETS")) return;
        ++requests;
        request_ = request;
        if (!answers_) return;
        xcb_convert_selection(connection_, window_, session_.atom("CLIPBOARD"), session_.atom("UTF8_STRING"),
                              session_.atom("KEPT"), XCB_CURRENT_TIME);
        xcb_flush(connection_);
    }
    void take(const xcb_selection_notify_event_t& notify) {
        const auto cookie = xcb_get_property(connection_, false, window_, notify.property, XCB_ATOM_ANY, 0, 1 << 16);
        if (auto* reply = xcb_get_property_reply(connection_, cookie, nullptr)) {
            kept = QByteArray(static_cast<const char*>(xcb_get_property_value(reply)),
                              xcb_get_property_value_length(reply));
            std::free(reply);
        }
        xcb_selection_notify_event_t answer{};
        answer.response_type = XCB_SELECTION_NOTIFY;
        answer.requestor = request_.requestor;
        answer.selection = request_.selection;
        answer.target = request_.target;
        answer.property = request_.property;
        xcb_send_event(connection_, false, answer.requestor, 0, reinterpret_cast<const char*>(&answer));
        xcb_flush(connection_);
    }

    const XSession& session_;
    bool answers_;
    xcb_connection_t* connection_;
    xcb_window_t window_ = 0;
    xcb_selection_request_event_t request_{};
};
