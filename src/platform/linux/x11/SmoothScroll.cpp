#include "platform/linux/x11/SmoothScroll.h"

#include <xcb/xinput.h>

#include <QSet>
#include <bit>
#include <cmath>
#include <utility>

namespace {

// An increment of the axis stands for so many points of the fingers' way, whatever its unit is: the scroll distance of
// the libinput driver, in all versions.
constexpr double kPointsPerIncrement = 15;

double number(const xcb_input_fp3232_t& value) {
    return value.integral + std::ldexp(double(value.frac), -32);
}

/// Touchpads, as the older protocol tells them from mice.
QSet<uint16_t> touchpads(X11Connection& connection) {
    QSet<uint16_t> found;
    const auto list = connection.ask(xcb_input_list_input_devices, xcb_input_list_input_devices_reply);
    if (!list) return found;
    auto device = xcb_input_list_input_devices_devices_iterator(list.get());
    for (; device.rem > 0; xcb_input_device_info_next(&device)) {
        if (device.data->device_type == connection.atom("TOUCHPAD")) found.insert(device.data->device_id);
    }
    return found;
}

}  // namespace

double touchpadPointsPerUnit(double increment) {
    return kPointsPerIncrement / increment;
}

std::optional<double> rawValuator(const xcb_input_raw_button_press_event_t& event, int valuator) {
    const auto* mask = xcb_input_raw_button_press_valuator_mask(&event);
    const int words = xcb_input_raw_button_press_valuator_mask_length(&event);
    if (valuator / 32 >= words || !(mask[valuator / 32] & 1U << valuator % 32)) return {};
    // Only the reported ones have a value, in order.
    int place = std::popcount(mask[valuator / 32] & ((1U << valuator % 32) - 1));
    for (int word = 0; word < valuator / 32; ++word) place += std::popcount(mask[word]);
    return number(xcb_input_raw_button_press_axisvalues_raw(&event)[place]);
}

SmoothScroll::SmoothScroll(std::shared_ptr<X11Connection> connection, std::function<void(double)> scrolled)
    : connection_(std::move(connection)) {
    const auto* input = connection_->extension(xcb_input_id);
    if (!input) return;
    findDevices();
    const auto handle = [this, opcode = input->major_opcode,
                         scrolled = std::move(scrolled)](const xcb_generic_event_t& event) {
        if (code(event) != XCB_GE_GENERIC || as<xcb_ge_generic_event_t>(event).extension != opcode) return;
        const auto& raw = as<xcb_input_raw_button_press_event_t>(event);  // of the same form as raw motion
        const auto axis = axes_.constFind(raw.deviceid);
        const bool isEmulated = raw.flags & XCB_INPUT_POINTER_EVENT_FLAGS_POINTER_EMULATED;
        if (raw.event_type != XCB_INPUT_RAW_MOTION || isEmulated || axis == axes_.constEnd()) return;
        // Positive is down.
        if (const auto units = rawValuator(raw, axis->number)) scrolled(-*units * axis->pointsPerUnit);
    };
    events_ = connection_->handle(handle);
    for (const uint16_t device : axes_.keys()) select(device, XCB_INPUT_XI_EVENT_MASK_RAW_MOTION);
}

SmoothScroll::~SmoothScroll() {
    for (const uint16_t device : axes_.keys()) select(device, 0);
}

void SmoothScroll::findDevices() {
    const auto devices =
        connection_->ask(xcb_input_xi_query_device, xcb_input_xi_query_device_reply, uint16_t(XCB_INPUT_DEVICE_ALL));
    if (!devices) return;
    const auto pads = touchpads(*connection_);
    auto device = xcb_input_xi_query_device_infos_iterator(devices.get());
    for (; device.rem > 0; xcb_input_xi_device_info_next(&device)) {
        if (!pads.contains(device.data->deviceid)) continue;
        auto one = xcb_input_xi_device_info_classes_iterator(device.data);
        for (; one.rem > 0; xcb_input_device_class_next(&one)) {
            if (one.data->type != XCB_INPUT_DEVICE_CLASS_TYPE_SCROLL) continue;
            const auto& scroll = reinterpret_cast<const xcb_input_scroll_class_t&>(*one.data);
            const double increment = number(scroll.increment);
            if (scroll.scroll_type == XCB_INPUT_SCROLL_TYPE_VERTICAL && increment != 0)
                axes_.insert(device.data->deviceid, {scroll.number, touchpadPointsPerUnit(increment)});
        }
    }
}

void SmoothScroll::select(uint16_t device, uint32_t events) {
    const struct {
        xcb_input_event_mask_t header;
        uint32_t events;
    } mask{{device, 1}, events};
    xcb_input_xi_select_events(connection_->xcb(), connection_->root(), 1, &mask.header);
    connection_->flush();
}
