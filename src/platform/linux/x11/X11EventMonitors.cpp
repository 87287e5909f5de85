#include "platform/linux/x11/X11EventMonitors.h"

#include <xcb/xinput.h>

#include <algorithm>
#include <numeric>
#include <utility>

#include "platform/linux/x11/Xkb.h"

namespace {
constexpr int kLeftButton = 1, kRightButton = 3;
constexpr int kWheelUp = 4, kWheelDown = 5, kLastWheel = 7;
constexpr double kWheelPoints = 10;  // for a step
}  // namespace

X11EventMonitors::X11EventMonitors(std::shared_ptr<X11Connection> connection, std::shared_ptr<PointerSampler> sampler,
                                   std::function<bool(xcb_window_t)> isOwnWindow)
    : connection_(std::move(connection)), sampler_(std::move(sampler)), isOwnWindow_(std::move(isOwnWindow)) {
    if (const auto* input = connection_->extension(xcb_input_id)) inputOpcode_ = input->major_opcode;
    if (const auto* keyboard = connection_->extension(xcb_xkb_id)) {
        const auto use = connection_->ask(xcb_xkb_use_extension, xcb_xkb_use_extension_reply, 1, 0);
        if (use && use->supported) keyboardEvent_ = keyboard->first_event;
    }
}

void X11EventMonitors::start() {
    readButtonMap();
    events_ = connection_->handle([this](const xcb_generic_event_t& event) { handle(event); });
    connection_->selectInputOnRoot(
        XCB_INPUT_XI_EVENT_MASK_RAW_BUTTON_PRESS | XCB_INPUT_XI_EVENT_MASK_RAW_BUTTON_RELEASE, true);
    lastMoved_ = lastTold_ = pointerLocation();
    samples_ = sampler_->observe([this](const PointerSampler::Sample& sample) { moved(sample); });
    watchKeyboard();
}

void X11EventMonitors::watchKeyboard() {
    if (keyboardEvent_ < 0) return;
    xcb_xkb_select_events_details_t details{};
    details.affectState = details.stateDetails = XCB_XKB_STATE_PART_MODIFIER_LOCK;
    xcb_xkb_select_events_aux(connection_->xcb(), XCB_XKB_ID_USE_CORE_KBD, XCB_XKB_EVENT_TYPE_STATE_NOTIFY, 0, 0, 0, 0,
                              &details);
    connection_->flush();
    capsLock_ = capsLock();
}

bool X11EventMonitors::capsLock() const {
    if (keyboardEvent_ < 0) return false;
    const auto state = connection_->ask(xcb_xkb_get_state, xcb_xkb_get_state_reply, uint16_t(XCB_XKB_ID_USE_CORE_KBD));
    return state && (state->lockedMods & XCB_MOD_MASK_LOCK);
}

void X11EventMonitors::readButtonMap() {
    std::iota(buttonMap_.begin(), buttonMap_.end(), uint8_t(0));
    const auto reply = connection_->ask(xcb_get_pointer_mapping, xcb_get_pointer_mapping_reply);
    if (!reply) return;
    const uint8_t* map = xcb_get_pointer_mapping_map(reply.get());
    std::copy_n(map, std::min(xcb_get_pointer_mapping_map_length(reply.get()), 255), buttonMap_.begin() + 1);
}

void X11EventMonitors::handle(const xcb_generic_event_t& event) {
    if (code(event) == XCB_MAPPING_NOTIFY) {
        if (as<xcb_mapping_notify_event_t>(event).request == XCB_MAPPING_POINTER) readButtonMap();
    } else if (code(event) == XCB_GE_GENERIC && as<xcb_ge_generic_event_t>(event).extension == inputOpcode_) {
        buttonChanged(as<xcb_input_raw_button_press_event_t>(event));
    } else if (code(event) == keyboardEvent_) {
        const auto& state = as<xcb_xkb_state_notify_event_t>(event);
        const bool locked = state.lockedMods & XCB_MOD_MASK_LOCK;
        if (state.xkbType != XCB_XKB_STATE_NOTIFY || locked == capsLock_) return;
        capsLock_ = locked;
        if (onCapsLockChanged) onCapsLockChanged(locked);
    }
}

void X11EventMonitors::wantScroll(bool wanted) {
    if (wanted == smoothScroll_.has_value()) return;
    smoothScroll_.reset();
    if (!wanted || inputOpcode_ < 0) return;
    smoothScroll_.emplace(connection_, [this](double points) {
        if (onScroll) onScroll(pointerLocation(), points);
    });
}

void X11EventMonitors::buttonChanged(const xcb_input_raw_button_press_event_t& raw) {
    const int button = buttonMap_[raw.detail & 0xff];
    const bool isPress = raw.event_type == XCB_INPUT_RAW_BUTTON_PRESS;
    if (!isPress && raw.event_type != XCB_INPUT_RAW_BUTTON_RELEASE) return;
    if (button < kWheelUp || button > kLastWheel)
        isPress ? pressed(button) : released(button);
    else if (isPress)
        wheelTurned(button, raw.sourceid, raw.flags & XCB_INPUT_POINTER_EVENT_FLAGS_POINTER_EMULATED);
}

void X11EventMonitors::wheelTurned(int button, uint16_t device, bool isEmulated) {
    if (!smoothScroll_ || !onScroll || (isEmulated && smoothScroll_->watches(device))) return;
    if (button == kWheelUp) onScroll(pointerLocation(), kWheelPoints);
    if (button == kWheelDown) onScroll(pointerLocation(), -kWheelPoints);
}

void X11EventMonitors::pressed(int button) {
    const auto sample = sampler_->sample();
    const bool elsewhere = !isOwnWindow_(sample.window);
    if (elsewhere && onPressElsewhere) onPressElsewhere();
    if (button != kRightButton) return;
    rightPressElsewhere_ = elsewhere ? std::optional(sample.pointer) : std::nullopt;
}

void X11EventMonitors::released(int button) {
    if (button == kLeftButton && onLeftMouseUp) onLeftMouseUp(pointerLocation());
    // Motion with a button held is not reported as onMouseMoved, so report the final position now: if the pointer rests
    // from here on, there will be no other event.
    if (const auto sample = sampler_->sample(); !sample.buttons) pointerAt(sample.pointer);
    if (button != kRightButton) return;
    const auto press = std::exchange(rightPressElsewhere_, std::nullopt);
    if (press && onRightMouseDown) onRightMouseDown(*press);
}

void X11EventMonitors::moved(const PointerSampler::Sample& sample) {
    if (sample.pointer == std::exchange(lastMoved_, sample.pointer)) return;
    if (!sample.buttons) pointerAt(sample.pointer);
    if ((sample.buttons & XCB_BUTTON_MASK_1) && onLeftMouseDragged) onLeftMouseDragged(sample.pointer);
}

void X11EventMonitors::pointerAt(QPointF pointer) {
    if (pointer == std::exchange(lastTold_, pointer)) return;
    if (onMouseMoved) onMouseMoved(pointer);
}
