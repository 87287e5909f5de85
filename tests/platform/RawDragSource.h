#pragma once

#include <QTimer>
#include <map>

#include "X11Test.h"

/// A drag source that breaks what rules it is told to: the XDND messages as they go over the wire, from a connection of
/// its own, and answers as the test scripts them, from Qt's loop. What it offers it offers as XdndSelection.
class RawDragSource {
 public:
    struct Answer {
        enum class Kind { data, refusal, nothing, pieces, endless, noProperty, strangers } kind = Kind::refusal;
        QByteArray bytes;            ///< for pieces: split at each ','
        const char* type = nullptr;  ///< none: that of the target
        uint8_t format = 8;
    };

    explicit RawDragSource(const XSession& session)
        : session_(session), connection_(xcb_connect(session.display().constData(), nullptr)) {
        window = xcb_generate_id(connection_);
        xcb_create_window(connection_, XCB_COPY_FROM_PARENT, window, session.root(), -10, -10, 1, 1, 0,
                          XCB_WINDOW_CLASS_INPUT_ONLY, XCB_COPY_FROM_PARENT, 0, nullptr);
        own();
        timer_.callOnTimeout([this] { work(); });
        timer_.start(1);
    }
    ~RawDragSource() { xcb_disconnect(connection_); }
    RawDragSource(const RawDragSource&) = delete;
    RawDragSource& operator=(const RawDragSource&) = delete;

    /// Takes the selection, as a drag that begins does.
    void own() {
        xcb_set_selection_owner(connection_, window, session_.atom("XdndSelection"), XCB_CURRENT_TIME);
        sync();
    }
    void setTypeList(const QList<const char*>& types) {
        write(window, session_.atom("XdndTypeList"), XCB_ATOM_ATOM, 32, atoms(types));
        sync();
    }
    void destroyWindow() {
        xcb_destroy_window(connection_, window);
        sync();
    }
    void send(xcb_window_t target, const char* message, const std::array<uint32_t, 4>& values) {
        xcb_client_message_event_t event{};
        event.response_type = XCB_CLIENT_MESSAGE;
        event.format = 32;
        event.window = target;
        event.type = session_.atom(message);
        event.data.data32[0] = window;
        std::copy(values.begin(), values.end(), event.data.data32 + 1);
        xcb_send_event(connection_, false, target, 0, reinterpret_cast<const char*>(&event));
        sync();
    }
    /// As the bytes of a list of atoms.
    QByteArray atoms(const QList<const char*>& names) const {
        QByteArray bytes;
        for (const char* name : names) {
            const xcb_atom_t atom = session_.atom(name);
            bytes.append(reinterpret_cast<const char*>(&atom), sizeof atom);
        }
        return bytes;
    }
    /// Three types fit into the message; where there are more, all are in the list of types.
    void enter(xcb_window_t target, const QList<const char*>& types) {
        std::array<uint32_t, 4> values{5u << 24 | (types.size() > 3)};
        for (int i = 0; i < types.size() && i < 3; ++i) values[size_t(i) + 1] = session_.atom(types[i]);
        if (types.size() > 3) setTypeList(types);
        send(target, "XdndEnter", values);
    }
    /// Proposes to move what is dragged, which would delete it here.
    void position(xcb_window_t target) {
        send(target, "XdndPosition", {0, 300u << 16 | 50, XCB_CURRENT_TIME, session_.atom("XdndActionMove")});
    }

    xcb_window_t window;
    std::map<QByteArray, Answer> answers;  ///< by target; what is not here is refused
    QList<QByteArray> requested;
    QList<QList<uint32_t>> statuses, finishes;  ///< the five values of each message

 private:
    using Kind = Answer::Kind;

    void sync() { awaitReply(connection_, xcb_get_input_focus, xcb_get_input_focus_reply); }
    QByteArray nameOf(xcb_atom_t atom) {
        const auto reply = awaitReply(connection_, xcb_get_atom_name, xcb_get_atom_name_reply, atom);
        return {xcb_get_atom_name_name(reply.get()), xcb_get_atom_name_name_length(reply.get())};
    }
    void write(xcb_window_t window_, xcb_atom_t property, xcb_atom_t type, uint8_t format, const QByteArray& bytes) {
        xcb_change_property(connection_, XCB_PROP_MODE_REPLACE, window_, property, type, format,
                            uint32_t(bytes.size() / (format / 8)), bytes.constData());
    }
    void notify(const xcb_selection_request_event_t& request, xcb_atom_t target, xcb_atom_t property) {
        xcb_selection_notify_event_t event{};
        event.response_type = XCB_SELECTION_NOTIFY;
        event.requestor = request.requestor;
        event.selection = request.selection;
        event.target = target;
        event.property = property;
        xcb_send_event(connection_, false, request.requestor, 0, reinterpret_cast<const char*>(&event));
    }
    void work() {
        while (const XcbPtr<xcb_generic_event_t> event{xcb_poll_for_event(connection_)}) {
            if (code(*event) == XCB_SELECTION_REQUEST) answer(as<xcb_selection_request_event_t>(*event));
            if (code(*event) == XCB_PROPERTY_NOTIFY) nextPiece(as<xcb_property_notify_event_t>(*event));
            if (code(*event) != XCB_CLIENT_MESSAGE) continue;
            const auto& message = as<xcb_client_message_event_t>(*event);
            auto& list = message.type == session_.atom("XdndStatus") ? statuses : finishes;
            list.append(QList<uint32_t>(message.data.data32, message.data.data32 + 5));
        }
        xcb_flush(connection_);
    }
    void answer(const xcb_selection_request_event_t& request) {
        const QByteArray target = nameOf(request.target);
        requested.append(target);
        const Answer answer = answers[target];
        const xcb_atom_t type = answer.type ? session_.atom(answer.type) : request.target;
        if (answer.kind == Kind::nothing) return;
        if (answer.kind == Kind::strangers) {
            // Answers to what was never asked, before the true one.
            const xcb_atom_t strange = session_.atom("STRANGE");
            write(request.requestor, strange, type, 8, "strange");
            notify(request, request.target, strange);
            notify(request, strange, request.property);
            notify(request, strange, XCB_NONE);
        }
        if (answer.kind == Kind::data || answer.kind == Kind::strangers)
            write(request.requestor, request.property, type, answer.format, answer.bytes);
        endless_ = answer.kind == Kind::endless;
        if (answer.kind == Kind::pieces || endless_) {
            pieces_ = endless_ ? QList<QByteArray>() : answer.bytes.split(',');
            pieceType_ = type;
            const uint32_t events = XCB_EVENT_MASK_PROPERTY_CHANGE;
            xcb_change_window_attributes(connection_, request.requestor, XCB_CW_EVENT_MASK, &events);
            write(request.requestor, request.property, session_.atom("INCR"), 32, QByteArray(4, '\0'));
        }
        notify(request, request.target, answer.kind == Kind::refusal ? xcb_atom_t(XCB_NONE) : request.property);
    }
    void nextPiece(const xcb_property_notify_event_t& event) {
        if (event.state != XCB_PROPERTY_DELETE || (pieces_.empty() && !endless_)) return;
        write(event.window, event.atom, pieceType_, 8, endless_ ? QByteArray(1 << 20, 'x') : pieces_.takeFirst());
    }

    const XSession& session_;
    xcb_connection_t* connection_;
    QTimer timer_;
    QList<QByteArray> pieces_;
    bool endless_ = false;
    xcb_atom_t pieceType_ = XCB_NONE;
};
