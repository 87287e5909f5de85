#include "platform/linux/x11/PointerSampler.h"

#include <xcb/xinput.h>

#include <cmath>

#include "platform/linux/ScreenCoordinates.h"

namespace {
constexpr double kRestAfter = 0.1;  // seconds
constexpr uint16_t kAnyButton =
    XCB_BUTTON_MASK_1 | XCB_BUTTON_MASK_2 | XCB_BUTTON_MASK_3 | XCB_BUTTON_MASK_4 | XCB_BUTTON_MASK_5;

double refreshRateAt(QPointF pointer) {
    return refreshRateOf(QGuiApplication::screenAt(toQt(pointer).toPoint()));
}
}  // namespace

PointerSampler::PointerSampler(std::shared_ptr<X11Connection> connection, MainLoop& loop)
    : connection_(std::move(connection)), loop_(loop) {
    const auto* input = connection_->extension(xcb_input_id);
    if (!input) return;
    events_ = connection_->handle([this, opcode = input->major_opcode](const xcb_generic_event_t& event) {
        if (code(event) != XCB_GE_GENERIC || timer_) return;
        const auto& generic = as<xcb_ge_generic_event_t>(event);
        if (generic.extension == opcode && generic.event_type == XCB_INPUT_RAW_MOTION) beginSampling();
    });
}

Subscription PointerSampler::observe(std::function<void(const Sample&)> observer) {
    if (!timer_) {
        last_ = sample();
        watchMotion();
    }
    return observers_.subscribe(std::move(observer));
}

PointerSampler::Sample PointerSampler::sample() const {
    const auto reply = connection_->ask(xcb_query_pointer, xcb_query_pointer_reply, connection_->root());
    return reply ? from(*reply) : last_;
}

PointerSampler::Sample PointerSampler::from(const xcb_query_pointer_reply_t& reply) const {
    return {nativeToModel(QPointF(reply.root_x, reply.root_y)), uint16_t(reply.mask & kAnyButton), reply.child};
}

void PointerSampler::look() {
    if (timer_ || looking_) return;
    looking_ = true;
    connection_->answerLater<xcb_query_pointer_reply_t>(
        xcb_query_pointer(connection_->xcb(), connection_->root()),
        lifetime_.guard([this](const XcbPtr<xcb_query_pointer_reply_t>& reply) {
            looking_ = false;
            if (reply && !timer_ && differs(from(*reply))) beginSampling();
        }));
}

void PointerSampler::watchMotion() {
    connection_->selectInputOnRoot(XCB_INPUT_XI_EVENT_MASK_RAW_MOTION, true);
}

void PointerSampler::beginSampling() {
    connection_->selectInputOnRoot(XCB_INPUT_XI_EVENT_MASK_RAW_MOTION, false);
    restingTicks_ = 0;
    const double rate = refreshRateAt(last_.pointer);
    ticksToRest_ = int(std::ceil(kRestAfter * rate));
    timer_ = loop_.every(1 / rate, [this] { tick(); });
    reportChange();
}

void PointerSampler::tick() {
    if (reportChange()) {
        restingTicks_ = 0;
        return;
    }
    if (++restingTicks_ < ticksToRest_) return;
    timer_.cancel();
    watchMotion();
    // The pointer may have moved between the last sample and the request for events.
    if (reportChange()) beginSampling();
}

bool PointerSampler::differs(const Sample& now) const {
    return now.pointer != last_.pointer || now.buttons != last_.buttons;
}

bool PointerSampler::reportChange() {
    const Sample now = sample();
    const bool changed = differs(now);
    last_ = now;
    if (!changed) return false;
    if (!observers_.hasObservers()) {
        timer_.cancel();
        connection_->selectInputOnRoot(XCB_INPUT_XI_EVENT_MASK_RAW_MOTION, false);
        return false;
    }
    observers_.emit(now);
    return true;
}
