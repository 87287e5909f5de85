#include "platform/linux/x11/X11Connection.h"

#include <xcb/xcbext.h>
#include <xcb/xinput.h>

namespace {
const xcb_screen_t* screenAt(xcb_connection_t* connection, int number) {
    auto screens = xcb_setup_roots_iterator(xcb_get_setup(connection));
    while (number-- > 0 && screens.rem > 1) xcb_screen_next(&screens);
    return screens.data;
}
}  // namespace

std::shared_ptr<X11Connection> X11Connection::open() {
    int screenNumber = 0;
    xcb_connection_t* connection = xcb_connect(nullptr, &screenNumber);
    if (xcb_connection_has_error(connection)) {
        xcb_disconnect(connection);
        return nullptr;
    }
    return std::shared_ptr<X11Connection>(new X11Connection(connection, screenNumber));
}

bool X11Connection::isReachable() {
    xcb_connection_t* connection = xcb_connect(nullptr, nullptr);
    const bool reached = !xcb_connection_has_error(connection);
    xcb_disconnect(connection);
    return reached;
}

X11Connection::X11Connection(xcb_connection_t* connection, int screenNumber)
    : connection_(connection), screenNumber_(screenNumber), screen_(screenAt(connection, screenNumber)) {
    notifier_ = std::make_unique<QSocketNotifier>(xcb_get_file_descriptor(connection), QSocketNotifier::Read);
    QObject::connect(notifier_.get(), &QSocketNotifier::activated, notifier_.get(), [this] { pump(); });
    // A timer, because posting from posted calls would starve the loop's timers.
    more_.setSingleShot(true);
    QObject::connect(&more_, &QTimer::timeout, &more_, [this] { pump(); });
    if (extension(xcb_input_id)) {
        const auto version = ask(xcb_input_xi_query_version, xcb_input_xi_query_version_reply, 2, 2);
        hasInput2_ = version && (version->major_version > 2 || version->minor_version >= 2);
    }
}

X11Connection::~X11Connection() {
    notifier_.reset();
    xcb_disconnect(connection_);
}

xcb_atom_t X11Connection::atom(const QByteArray& name) {
    xcb_atom_t& atom = atoms_[name];
    if (atom == XCB_ATOM_NONE) {
        const auto reply = ask(xcb_intern_atom, xcb_intern_atom_reply, false, uint16_t(name.size()), name.constData());
        if (reply) atom = reply->atom;
    }
    return atom;
}

const xcb_query_extension_reply_t* X11Connection::extension(xcb_extension_t& extension) const {
    const auto* data = xcb_get_extension_data(connection_, &extension);
    return data && data->present ? data : nullptr;
}

XcbPtr<xcb_get_property_reply_t> X11Connection::property(xcb_window_t window, const QByteArray& name, xcb_atom_t type,
                                                         uint32_t max) {
    return ask(xcb_get_property, xcb_get_property_reply, false, window, atom(name), type, 0, max);
}

std::vector<uint32_t> X11Connection::values(xcb_window_t window, const QByteArray& name, xcb_atom_t type,
                                            uint32_t max) {
    const auto reply = property(window, name, type, max);
    if (!reply || reply->format != 32) return {};
    const auto* first = static_cast<const uint32_t*>(xcb_get_property_value(reply.get()));
    return {first, first + reply->value_len};
}

QByteArray X11Connection::bytes(xcb_window_t window, const QByteArray& name, xcb_atom_t type, uint32_t max) {
    const auto reply = property(window, name, type, max);
    if (!reply || reply->format != 8) return {};
    return {static_cast<const char*>(xcb_get_property_value(reply.get())), int(reply->value_len)};
}

void X11Connection::selectOnRoot(uint32_t events, bool on) {
    uint32_t wanted = 0, was = 0;
    for (uint32_t bit = 0; bit < rootEventUsers_.size(); ++bit) {
        const uint32_t event = 1U << bit;
        was |= rootEventUsers_[bit] > 0 ? event : 0;
        if (events & event) rootEventUsers_[bit] += on ? 1 : -1;
        wanted |= rootEventUsers_[bit] > 0 ? event : 0;
    }
    if (wanted == was) return;
    xcb_change_window_attributes(connection_, root(), XCB_CW_EVENT_MASK, &wanted);
    flush();
}

void X11Connection::selectInputOnRoot(uint32_t events, bool on) {
    const uint32_t wanted = on ? rootInputEvents_ | events : rootInputEvents_ & ~events;
    if (wanted == rootInputEvents_ || !hasInput2_) return;
    rootInputEvents_ = wanted;
    const struct {
        xcb_input_event_mask_t header;
        uint32_t events;
    } mask{{XCB_INPUT_DEVICE_ALL_MASTER, 1}, wanted};
    xcb_input_xi_select_events(connection_, root(), 1, &mask.header);
    flush();
}

// Other programs can cause events faster than we handle them, so let the rest of the program run in between.
void X11Connection::pump() {
    constexpr int kMaxAtOnce = 256;
    for (int handled = 0; handled < kMaxAtOnce; ++handled) {
        XcbPtr<xcb_generic_event_t> event;
        if (!queued_.empty()) {
            event = std::move(queued_.front());
            queued_.pop_front();
        } else {
            event.reset(xcb_poll_for_event(connection_));
        }
        if (!event) {
            deliverAnswers();
            if (xcb_connection_has_error(connection_)) notifier_->setEnabled(false);
            return;
        }
        handlers_.emit(*event);
    }
    deliverAnswers();
    more_.start();
}

void X11Connection::deliverAnswers() {
    while (!awaited_.empty()) {
        void* answer = nullptr;
        xcb_generic_error_t* error = nullptr;
        if (!xcb_poll_for_reply(connection_, awaited_.front().sequence, &answer, &error)) return;
        std::free(error);
        const auto done = std::move(awaited_.front().done);
        awaited_.pop_front();
        done(answer);
    }
}

void X11Connection::flush() {
    xcb_flush(connection_);
    // While waiting to write, xcb may have read events.
    collectQueued();
}

void X11Connection::collectQueued() {
    while (auto* event = xcb_poll_for_queued_event(connection_)) queued_.emplace_back(event);
    // They have been read from the socket, so nothing else would wake the loop for them.
    if (!queued_.empty() || !awaited_.empty()) more_.start();
}
