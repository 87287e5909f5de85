#include "platform/linux/x11/X11DropTarget.h"

#include <xcb/xinput.h>

#include <QGuiApplication>
#include <algorithm>
#include <utility>

namespace {
// How long after the button's release a source may take to report a drop. After that the panel stops looking targeted,
// though it would still accept the drop.
constexpr double kSecondsToEnd = 3;
}  // namespace

X11DropTarget::X11DropTarget(std::shared_ptr<X11Connection> connection, MainLoop& loop, xcb_window_t window,
                             PanelWindow& panel)
    : connection_(std::move(connection)), loop_(loop), window_(window), panel_(panel) {
    if (const auto* input = connection_->extension(xcb_input_id)) inputOpcode_ = input->major_opcode;
    events_ = connection_->handle([this](const xcb_generic_event_t& event) { watch(event); });
    qGuiApp->installNativeEventFilter(this);
}

X11DropTarget::~X11DropTarget() {
    qGuiApp->removeNativeEventFilter(this);
}

bool X11DropTarget::nativeEventFilter(const QByteArray& type, void* message, qintptr*) {
    if (type != "xcb_generic_event_t") return false;
    const auto& event = *static_cast<const xcb_generic_event_t*>(message);
    if (code(event) != XCB_CLIENT_MESSAGE) return false;
    const auto& client = as<xcb_client_message_event_t>(event);
    if (client.window != window_ || client.format != 32) return false;

    if (client.type == connection_->atom("XdndEnter"))
        entered(client.data);
    else if (client.type == connection_->atom("XdndPosition"))
        moved(client.data);
    else if (client.type == connection_->atom("XdndDrop"))
        dropped(client.data);
    else if (client.type != connection_->atom("XdndLeave"))
        return false;
    else if (client.data.data32[0] == source_)
        forgetSource();
    return true;
}

void X11DropTarget::entered(const xcb_client_message_data_t& message) {
    forgetSource();
    source_ = message.data32[0];
    // Watching the root window would replace our event mask there.
    if (source_ == connection_->root() || !watchSource(true)) {
        source_ = XCB_NONE;
        return;
    }
    // The message holds up to three types; if there are more, all are in the property.
    const bool more = message.data32[1] & 1;
    std::vector<xcb_atom_t> types;
    if (more) types = connection_->values(source_, "XdndTypeList", XCB_ATOM_ATOM, kMaxTargets);
    if (types.empty()) types.assign(message.data32 + 2, message.data32 + 5);
    forms_ = usableForms(*connection_, types);
    connection_->selectInputOnRoot(XCB_INPUT_XI_EVENT_MASK_RAW_BUTTON_RELEASE, true);
}

void X11DropTarget::moved(const xcb_client_message_data_t& message) {
    const xcb_window_t source = message.data32[0];
    const bool accepted = source == source_ && accepts();
    sendStatus(source, accepted);
    if (source != source_) return;
    end_.cancel();
    setTargeted(accepted);
}

void X11DropTarget::dropped(const xcb_client_message_data_t& message) {
    const XdndPeers peers{message.data32[0], window_};
    if (peers.source != source_ || !accepts()) {
        sendXdndFinished(*connection_, peers, false);
        if (peers.source == source_) forgetSource();
        return;
    }
    auto drop = std::make_shared<X11Drop>(connection_, loop_, peers, std::exchange(forms_, {}), message.data32[2]);
    forgetSource();
    panel_.listener().dropped(std::move(drop));
}

void X11DropTarget::watch(const xcb_generic_event_t& event) {
    if (source_ == XCB_NONE) return;
    if (code(event) == XCB_DESTROY_NOTIFY && as<xcb_destroy_notify_event_t>(event).window == source_) {
        forgetSource();
    } else if (code(event) == XCB_GE_GENERIC && as<xcb_ge_generic_event_t>(event).extension == inputOpcode_ &&
               as<xcb_ge_generic_event_t>(event).event_type == XCB_INPUT_RAW_BUTTON_RELEASE) {
        if (targeted_) end_ = loop_.after(kSecondsToEnd, [this] { setTargeted(false); });
    }
}

bool X11DropTarget::watchSource(bool on) {
    const uint32_t events = on ? XCB_EVENT_MASK_STRUCTURE_NOTIFY : XCB_EVENT_MASK_NO_EVENT;
    xcb_change_window_attributes(connection_->xcb(), source_, XCB_CW_EVENT_MASK, &events);
    connection_->flush();
    if (!on) return true;
    // A window that is already gone sends no DestroyNotify.
    return connection_->ask(xcb_get_window_attributes, xcb_get_window_attributes_reply, source_) != nullptr;
}

void X11DropTarget::forgetSource() {
    if (source_ == XCB_NONE) return;
    watchSource(false);
    source_ = XCB_NONE;
    forms_.clear();
    end_.cancel();
    setTargeted(false);
}

bool X11DropTarget::accepts() const {
    const bool usable = std::any_of(forms_.begin(), forms_.end(),
                                    [](const DragForm& form) { return form.kind != DragForm::Kind::contents; });
    return usable && panel_.listener().acceptsDrop();
}

void X11DropTarget::setTargeted(bool targeted) {
    if (targeted == std::exchange(targeted_, targeted)) return;
    panel_.listener().dropTargeted(targeted);
}

void X11DropTarget::sendStatus(xcb_window_t source, bool accepted) {
    xcb_client_message_event_t message{};
    message.response_type = XCB_CLIENT_MESSAGE;
    message.format = 32;
    message.window = source;
    message.type = connection_->atom("XdndStatus");
    message.data.data32[0] = window_;
    // No rectangle within which the answer stays the same, since it depends on what the panel shows.
    message.data.data32[1] = accepted;
    message.data.data32[4] = accepted ? connection_->atom("XdndActionCopy") : xcb_atom_t(XCB_ATOM_NONE);
    xcb_send_event(connection_->xcb(), false, source, XCB_EVENT_MASK_NO_EVENT, reinterpret_cast<const char*>(&message));
    connection_->flush();
}
