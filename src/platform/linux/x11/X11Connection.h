#pragma once

#include <xcb/xcb.h>

#include <QByteArray>
#include <QHash>
#include <QSocketNotifier>
#include <QTimer>
#include <array>
#include <deque>
#include <functional>
#include <memory>
#include <vector>

#include "platform/Signal.h"
#include "platform/linux/x11/XcbReply.h"

/// A connection to the X server besides Qt's, so that Qt does not have to process events of the whole desktop. Main
/// thread only. A broken connection goes silent; Qt then ends the program.
class X11Connection {
 public:
    /// Null when the server cannot be reached.
    static std::shared_ptr<X11Connection> open();
    /// Whether the server can be reached; needs no Qt application.
    static bool isReachable();
    ~X11Connection();
    X11Connection(const X11Connection&) = delete;
    X11Connection& operator=(const X11Connection&) = delete;

    xcb_connection_t* xcb() const { return connection_; }
    xcb_window_t root() const { return screen_->root; }
    int screenNumber() const { return screenNumber_; }
    /// The atom with this name; cached.
    xcb_atom_t atom(const QByteArray& name);
    /// The first event code and major opcode of an extension; null where the server lacks it.
    const xcb_query_extension_reply_t* extension(xcb_extension_t& extension) const;

    /// Sends a request and waits for its answer; null when that is an error.
    template <class Request, class Reply, class... Arguments>
    auto ask(Request request, Reply reply, Arguments... arguments) {
        return answer(reply, request(connection_, arguments...));
    }
    /// Waits for the answer to a request that was sent before.
    template <class Reply, class Cookie>
    auto answer(Reply reply, Cookie cookie) {
        using Answer = std::remove_pointer_t<decltype(reply(connection_, cookie, nullptr))>;
        xcb_generic_error_t* error = nullptr;
        XcbPtr<Answer> result(reply(connection_, cookie, &error));
        std::free(error);
        collectQueued();
        return result;
    }
    /// Sends all buffered requests.
    void flush();
    /// Calls `done` from the loop with the answer to a request that was sent before; null if that is an error. Does not
    /// block.
    template <class Answer, class Cookie>
    void answerLater(Cookie cookie, std::function<void(XcbPtr<Answer>)> done) {
        awaited_.push_back({cookie.sequence, [done = std::move(done)](void* answer) {
                                done(XcbPtr<Answer>(static_cast<Answer*>(answer)));
                            }});
        flush();
    }

    /// The 32-bit values of a window's property, the first `max` of them; empty where it has none.
    std::vector<uint32_t> values(xcb_window_t window, const QByteArray& name, xcb_atom_t type,
                                 uint32_t max = kMaxUnits);
    /// A window's property as bytes, up to 4 * `max` of them; empty if the window has none.
    QByteArray bytes(xcb_window_t window, const QByteArray& name, xcb_atom_t type, uint32_t max = kMaxUnits);

    /// Calls `handler` for every event while the result lives.
    [[nodiscard]] Subscription handle(std::function<void(const xcb_generic_event_t&)> handler) {
        return handlers_.subscribe(std::move(handler));
    }
    /// Subscribes to core events on the root window, or unsubscribes; subscriptions to each event are counted.
    void selectOnRoot(uint32_t events, bool on);
    /// The same for XInput 2 events of all master devices.
    void selectInputOnRoot(uint32_t events, bool on);

 private:
    X11Connection(xcb_connection_t* connection, int screenNumber);

    static constexpr uint32_t kMaxUnits = 1 << 16;
    XcbPtr<xcb_get_property_reply_t> property(xcb_window_t window, const QByteArray& name, xcb_atom_t type,
                                              uint32_t max);
    void pump();
    void collectQueued();
    void deliverAnswers();

    xcb_connection_t* connection_;
    int screenNumber_;
    const xcb_screen_t* screen_;
    bool hasInput2_ = false;  // 2.2 or later
    std::array<int, 32> rootEventUsers_{};
    uint32_t rootInputEvents_ = 0;
    QHash<QByteArray, xcb_atom_t> atoms_;
    Signal<const xcb_generic_event_t&> handlers_;
    /// Events that were read along with an answer.
    std::deque<XcbPtr<xcb_generic_event_t>> queued_;
    struct Awaited {
        unsigned int sequence;
        std::function<void(void*)> done;  ///< takes ownership of the answer
    };
    std::deque<Awaited> awaited_;
    std::unique_ptr<QSocketNotifier> notifier_;
    QTimer more_;  // wakes the loop for events that have already been read from the socket
};

/// The event of type `T` that `event` is known to be.
template <class T>
const T& as(const xcb_generic_event_t& event) {
    return reinterpret_cast<const T&>(event);
}

/// The event's code, without the flag for events that another client sent.
inline int code(const xcb_generic_event_t& event) {
    return event.response_type & 0x7f;
}
