#include "platform/linux/x11/StackingGuard.h"

#include <QRect>
#include <algorithm>

namespace {
// One click can restack many windows and a dragged window moves at every motion, so a while passes before we look.
constexpr double settleSeconds = 0.1;
constexpr double firstPause = 0.3, longestPause = 5;

QRect rectangle(const xcb_get_geometry_reply_t& geometry) {
    const int border = 2 * geometry.border_width;
    return {geometry.x, geometry.y, geometry.width + border, geometry.height + border};
}
}  // namespace

StackingGuard::StackingGuard(std::shared_ptr<X11Connection> connection, MainLoop& loop, xcb_window_t window,
                             std::function<bool(xcb_window_t)> ownWindow, std::function<void()> raise)
    : connection_(std::move(connection)),
      loop_(loop),
      window_(window),
      ownWindow_(std::move(ownWindow)),
      raise_(std::move(raise)),
      secondsToNextRaise_(firstPause) {
    events_ = connection_->handle([this](const xcb_generic_event_t& event) {
        const bool restacks = code(event) == XCB_MAP_NOTIFY || code(event) == XCB_CONFIGURE_NOTIFY ||
                              code(event) == XCB_CIRCULATE_NOTIFY || code(event) == XCB_REPARENT_NOTIFY;
        if (restacks && !pending_) checkIn(settleSeconds);
    });
    connection_->selectOnRoot(XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY, true);
}

StackingGuard::~StackingGuard() {
    connection_->selectOnRoot(XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY, false);
}

void StackingGuard::checkIn(double seconds) {
    connection_->selectOnRoot(XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY, false);
    pending_ = loop_.after(seconds, [this] { check(); });
}

void StackingGuard::check() {
    pending_.cancel();
    connection_->selectOnRoot(XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY, true);  // before the look, so that nothing is missed
    if (!covered()) {
        secondsToNextRaise_ = firstPause;
        return;
    }
    raise_();
    checkIn(secondsToNextRaise_);
    secondsToNextRaise_ = std::min(2 * secondsToNextRaise_, longestPause);
}

bool StackingGuard::covered() {
    const auto tree = connection_->ask(xcb_query_tree, xcb_query_tree_reply, connection_->root());
    const auto ours = connection_->ask(xcb_get_geometry, xcb_get_geometry_reply, window_);
    if (!tree || !ours) return false;
    const xcb_window_t* first = xcb_query_tree_children(tree.get());
    const xcb_window_t* end = first + xcb_query_tree_children_length(tree.get());
    const xcb_window_t* place = std::find(first, end, window_);
    if (place == end) return false;

    return std::any_of(place + 1, end, [&](xcb_window_t other) {
        if (ownWindow_(other)) return false;
        const auto attributes = connection_->ask(xcb_get_window_attributes, xcb_get_window_attributes_reply, other);
        if (!attributes || attributes->map_state != XCB_MAP_STATE_VIEWABLE ||
            attributes->_class != XCB_WINDOW_CLASS_INPUT_OUTPUT)
            return false;
        const auto geometry = connection_->ask(xcb_get_geometry, xcb_get_geometry_reply, other);
        return geometry && rectangle(*geometry).intersects(rectangle(*ours));
    });
}
