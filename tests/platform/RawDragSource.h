#pragma once

#include <QTimer>
#include <map>

#include "X11Test.h"

/// A drag source that breaks what rules it is told to: the XDND messages as they go over the wire, and answers as the
/// test scripts them, from Qt's loop. What it offers it offers as XdndSelection.
class RawDragSource : public XClient {
 public:
    struct Answer {
        enum class Kind { data, refusal, nothing, pieces, endless, noProperty } kind = Kind::refusal;
        QByteArray bytes;            ///< for pieces: split at each ','
        const char* type = nullptr;  ///< none: that of the target
        uint8_t format = 8;
    };

    explicit RawDragSource(const XSession& session) : XClient(session.display()) {
        xcb_create_window(xcb(), XCB_COPY_FROM_PARENT, window, root(), -10, -10, 1, 1, 0, XCB_WINDOW_CLASS_INPUT_ONLY,
                          XCB_COPY_FROM_PARENT, 0, nullptr);
        own(window);
        timer_.callOnTimeout([this] { work(); });
        timer_.start(1);
    }

    /// Gives the selection to a window, as a drag that begins from it does.
    void own(xcb_window_t owner) {
        xcb_set_selection_owner(xcb(), owner, atom("XdndSelection"), XCB_CURRENT_TIME);
        sync();
    }
    void setTypeList(const QList<const char*>& types) {
        write(window, atom("XdndTypeList"), XCB_ATOM_ATOM, 32, atoms(types));
        sync();
    }
    void destroyWindow() {
        xcb_destroy_window(xcb(), window);
        sync();
    }
    void send(xcb_window_t target, const char* message, const std::array<uint32_t, 4>& values) {
        xcb_client_message_event_t event{XCB_CLIENT_MESSAGE, 32, 0, target, atom(message), {}};
        event.data.data32[0] = window;
        std::copy(values.begin(), values.end(), event.data.data32 + 1);
        xcb_send_event(xcb(), false, target, 0, reinterpret_cast<const char*>(&event));
        sync();
    }
    /// As the bytes of a list of atoms.
    QByteArray atoms(const QList<const char*>& names) const {
        QByteArray bytes;
        for (const char* name : names) {
            const xcb_atom_t number = atom(name);
            bytes.append(reinterpret_cast<const char*>(&number), sizeof number);
        }
        return bytes;
    }
    /// Three types fit into the message; where there are more, all are in the list of types.
    void enter(xcb_window_t target, const QList<const char*>& types) {
        std::array<uint32_t, 4> values{5u << 24 | (types.size() > 3)};
        for (int i = 0; i < types.size() && i < 3; ++i) values[size_t(i) + 1] = atom(types[i]);
        if (types.size() > 3) setTypeList(types);
        send(target, "XdndEnter", values);
    }
    /// Proposes to move what is dragged, which would delete it here.
    void position(xcb_window_t target) {
        send(target, "XdndPosition", {0, 300u << 16 | 50, XCB_CURRENT_TIME, atom("XdndActionMove")});
    }

    const xcb_window_t window = xcb_generate_id(xcb());
    std::map<QByteArray, Answer> answers;  ///< by target; what is not here is refused
    int pause = 0;                         ///< milliseconds before each piece
    QList<QByteArray> requested;
    xcb_timestamp_t lastTime = 0;               ///< with which something was requested
    QList<QList<uint32_t>> statuses, finishes;  ///< the five values of each message

 private:
    using Kind = Answer::Kind;

    void write(xcb_window_t to, xcb_atom_t property, xcb_atom_t type, uint8_t format, const QByteArray& bytes) {
        xcb_change_property(xcb(), XCB_PROP_MODE_REPLACE, to, property, type, format,
                            uint32_t(bytes.size() / (format / 8)), bytes.constData());
    }
    void work() {
        while (const auto event = owned(xcb_poll_for_event(xcb()))) {
            if (code(*event) == XCB_SELECTION_REQUEST) answer(as<xcb_selection_request_event_t>(*event));
            if (code(*event) == XCB_PROPERTY_NOTIFY) nextPiece(as<xcb_property_notify_event_t>(*event));
            if (code(*event) != XCB_CLIENT_MESSAGE) continue;
            const auto& message = as<xcb_client_message_event_t>(*event);
            auto& list = message.type == atom("XdndStatus") ? statuses : finishes;
            list.append(QList<uint32_t>(message.data.data32, message.data.data32 + 5));
        }
        xcb_flush(xcb());
    }
    void answer(const xcb_selection_request_event_t& request) {
        const auto name = awaitReply(xcb(), xcb_get_atom_name, xcb_get_atom_name_reply, request.target);
        requested.emplace_back(xcb_get_atom_name_name(name.get()), xcb_get_atom_name_name_length(name.get()));
        lastTime = request.time;
        const Answer answer = answers[requested.last()];
        const xcb_atom_t type = answer.type ? atom(answer.type) : request.target;
        if (answer.kind == Kind::nothing) return;
        if (answer.kind == Kind::data) write(request.requestor, request.property, type, answer.format, answer.bytes);
        endless_ = answer.kind == Kind::endless;
        if (answer.kind == Kind::pieces || endless_) {
            pieces_ = endless_ ? QList<QByteArray>() : answer.bytes.split(',');
            pieceType_ = type;
            const uint32_t events = XCB_EVENT_MASK_PROPERTY_CHANGE;
            xcb_change_window_attributes(xcb(), request.requestor, XCB_CW_EVENT_MASK, &events);
            write(request.requestor, request.property, atom("INCR"), 32, QByteArray(4, '\0'));
        }
        const xcb_atom_t property = answer.kind == Kind::refusal ? xcb_atom_t(XCB_NONE) : request.property;
        const xcb_selection_notify_event_t event{
            XCB_SELECTION_NOTIFY, 0, 0, 0, request.requestor, request.selection, request.target, property};
        xcb_send_event(xcb(), false, request.requestor, 0, reinterpret_cast<const char*>(&event));
    }
    void nextPiece(const xcb_property_notify_event_t& event) {
        if (event.state != XCB_PROPERTY_DELETE || (pieces_.empty() && !endless_)) return;
        const QByteArray piece = endless_ ? QByteArray(1 << 20, 'x') : pieces_.takeFirst();
        QTimer::singleShot(pause, &timer_,
                           [=, this] { write(event.window, event.atom, pieceType_, 8, piece), xcb_flush(xcb()); });
    }

    QTimer timer_;
    QList<QByteArray> pieces_;
    bool endless_ = false;
    xcb_atom_t pieceType_ = XCB_NONE;
};
