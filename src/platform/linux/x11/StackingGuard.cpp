#include "platform/linux/x11/StackingGuard.h"

#include <algorithm>

namespace {
// One click can restack many windows, and a dragged window reports every motion. So the first event is handled at once,
// and the following ones together after a delay.
constexpr double kSettleSeconds = 0.1, kCalmSeconds = 0.3;
// Pause between raises; the first one is too short to notice.
constexpr double kFirstRest = 0.05, kMaxRest = 5;
}  // namespace

StackingGuard::StackingGuard(std::shared_ptr<X11Connection> connection, MainLoop& loop, xcb_window_t window,
                             std::function<bool(xcb_window_t)> isOwnWindow, std::function<QRect()> screen)
    : connection_(std::move(connection)),
      loop_(loop),
      window_(window),
      clientList_(connection_->atom("_NET_CLIENT_LIST_STACKING")),
      isOwnWindow_(std::move(isOwnWindow)),
      screen_(std::move(screen)),
      nextRest_(kFirstRest) {
    if (const auto* shape = connection_->extension(xcb_shape_id)) shapeNotify_ = shape->first_event + XCB_SHAPE_NOTIFY;
    events_ = connection_->handle([this](const xcb_generic_event_t& event) { handle(event); });
    connection_->selectOnRoot(XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY, true);
    connection_->selectOnRoot(XCB_EVENT_MASK_PROPERTY_CHANGE, true);
}

StackingGuard::~StackingGuard() {
    if (!pending_) connection_->selectOnRoot(XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY, false);
    connection_->selectOnRoot(XCB_EVENT_MASK_PROPERTY_CHANGE, false);
}

void StackingGuard::handle(const xcb_generic_event_t& event) {
    if (pending_) return;
    if (code(event) == shapeNotify_) return scheduleCheck();
    switch (code(event)) {
        case XCB_PROPERTY_NOTIFY:
            if (as<xcb_property_notify_event_t>(event).atom != clientList_) return;
            break;
        case XCB_MAP_NOTIFY:
        case XCB_UNMAP_NOTIFY:
        case XCB_DESTROY_NOTIFY:
        case XCB_CONFIGURE_NOTIFY:
        case XCB_CIRCULATE_NOTIFY:
        case XCB_REPARENT_NOTIFY:
            break;
        default:
            return;
    }
    scheduleCheck();
}

void StackingGuard::scheduleCheck() {
    connection_->selectOnRoot(XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY, false);
    if (!busy_) soon_ = loop_.after(0, [this] { check(); });
    pending_ = loop_.after(kSettleSeconds, [this] {
        pending_.cancel();
        busy_ = loop_.after(kCalmSeconds, [this] { busy_.cancel(); });
        // Before the check, so that no event is missed.
        connection_->selectOnRoot(XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY, true);
        check();
    });
}

void StackingGuard::check() {
    const TopLevels windows(*connection_);
    const int place = windows.place(window_);
    if (place < 0) return;
    const xcb_window_t managed = windows.highestManaged();
    if (windows.place(managed) > place)
        raiseAbove(managed);
    else if (!resting_)
        nextRest_ = kFirstRest;

    const bool covered = windows.isCovered(screen_(), place, [this](xcb_window_t window) { return isForeign(window); });
    if (covered == covered_) return;
    covered_ = covered;
    if (onCovered) onCovered();
}

void StackingGuard::raiseAbove(xcb_window_t managed) {
    if (resting_) return;
    restack(managed, XCB_STACK_MODE_ABOVE);
    resting_ = loop_.after(nextRest_, [this] {
        resting_.cancel();
        check();
    });
    nextRest_ = std::min(2 * nextRest_, kMaxRest);
}

void StackingGuard::settle() {
    const TopLevels windows(*connection_);
    if (const xcb_window_t managed = windows.highestManaged()) {
        restack(managed, XCB_STACK_MODE_ABOVE);
    } else {
        const auto lowest = windows.lowestUnmanaged([this](xcb_window_t window) { return isForeign(window); });
        if (lowest && windows.place(lowest) < windows.place(window_)) restack(lowest, XCB_STACK_MODE_BELOW);
    }
    check();
}

// If the sibling is gone by then, the server sends an error, which is ignored; the sibling's end triggers another
// check.
void StackingGuard::restack(xcb_window_t sibling, xcb_stack_mode_t mode) {
    const uint32_t values[] = {sibling, mode};
    xcb_configure_window(connection_->xcb(), window_, XCB_CONFIG_WINDOW_SIBLING | XCB_CONFIG_WINDOW_STACK_MODE, values);
    connection_->flush();
}

// Not the server's own overlay window, which is above all others while a compositor uses it.
bool StackingGuard::isForeign(xcb_window_t window) const {
    const bool isServers = window <= xcb_get_setup(connection_->xcb())->resource_id_mask;
    return !isServers && !isOwnWindow_(window);
}
