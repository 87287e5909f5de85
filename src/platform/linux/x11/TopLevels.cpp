#include "platform/linux/x11/TopLevels.h"

#include <QRegion>
#include <algorithm>

namespace {
// Number of windows that are queried at once, and in all.
constexpr std::size_t kMaxAtOnce = 16, kMaxWindows = 256;
constexpr int kMaxFrameDepth = 8;
// Some lockers do not cover the outermost pixels.
constexpr int kMargin = 2;
}  // namespace

TopLevels::TopLevels(X11Connection& connection) : connection_(connection) {
    const auto tree = connection_.ask(xcb_query_tree, xcb_query_tree_reply, connection_.root());
    if (!tree) return;
    const xcb_window_t* first = xcb_query_tree_children(tree.get());
    windows_.assign(first, first + xcb_query_tree_children_length(tree.get()));
}

int TopLevels::place(xcb_window_t window) const {
    const auto found = std::find(windows_.begin(), windows_.end(), window);
    return found == windows_.end() ? -1 : int(found - windows_.begin());
}

std::vector<TopLevels::Kind> TopLevels::kinds(const std::vector<xcb_window_t>& windows) const {
    std::vector<xcb_get_window_attributes_cookie_t> cookies;
    for (const auto window : windows) cookies.push_back(xcb_get_window_attributes(connection_.xcb(), window));
    std::vector<Kind> kinds;
    for (const auto cookie : cookies) {
        const auto reply = connection_.answer(xcb_get_window_attributes_reply, cookie);
        const bool visible =
            reply && reply->map_state == XCB_MAP_STATE_VIEWABLE && reply->_class == XCB_WINDOW_CLASS_INPUT_OUTPUT;
        kinds.push_back(!visible ? Kind::invisible : reply->override_redirect ? Kind::unmanaged : Kind::managed);
    }
    return kinds;
}

// Window managers reparent windows into frames, which are usually override-redirect themselves.
std::vector<xcb_window_t> TopLevels::framesOf(std::vector<xcb_window_t> clients) const {
    std::vector<xcb_window_t> frames;
    for (int depth = 0; depth < kMaxFrameDepth && !clients.empty(); ++depth) {
        std::vector<xcb_query_tree_cookie_t> cookies;
        for (const auto window : clients) cookies.push_back(xcb_query_tree(connection_.xcb(), window));
        std::vector<xcb_window_t> parents;
        for (std::size_t i = 0; i < clients.size(); ++i) {
            const auto reply = connection_.answer(xcb_query_tree_reply, cookies[i]);
            if (!reply) continue;
            if (reply->parent == connection_.root())
                frames.push_back(clients[i]);
            else
                parents.push_back(reply->parent);
        }
        clients = std::move(parents);
    }
    return frames;
}

xcb_window_t TopLevels::highestManaged() const {
    auto clients = connection_.values(connection_.root(), "_NET_CLIENT_LIST_STACKING", XCB_ATOM_WINDOW);
    if (clients.empty()) clients = connection_.values(connection_.root(), "_NET_CLIENT_LIST", XCB_ATOM_WINDOW);
    const bool told = !clients.empty();
    if (!told) clients = windows_;
    std::reverse(clients.begin(), clients.end());
    clients.resize(std::min(clients.size(), kMaxWindows));

    for (std::size_t from = 0; from < clients.size(); from += kMaxAtOnce) {
        const auto first = clients.begin() + std::ptrdiff_t(from);
        std::vector<xcb_window_t> some(first, first + std::ptrdiff_t(std::min(kMaxAtOnce, clients.size() - from)));
        if (told) some = framesOf(std::move(some));
        const auto kind = kinds(some);
        int highest = -1;
        for (std::size_t i = 0; i < some.size(); ++i) {
            if (kind[i] == Kind::managed || (told && kind[i] == Kind::unmanaged))
                highest = std::max(highest, place(some[i]));
        }
        if (highest >= 0) return windows_[std::size_t(highest)];
    }
    return XCB_NONE;
}

xcb_window_t TopLevels::lowestUnmanaged(const std::function<bool(xcb_window_t)>& counts) const {
    const std::vector<xcb_window_t> some(windows_.begin(),
                                         windows_.begin() + std::ptrdiff_t(std::min(kMaxWindows, windows_.size())));
    const auto kind = kinds(some);
    for (std::size_t i = 0; i < some.size(); ++i) {
        if (kind[i] == Kind::unmanaged && counts(some[i]) && !isDesktop(some[i])) return some[i];
    }
    return XCB_NONE;
}

bool TopLevels::isDesktop(xcb_window_t window) const {
    const auto types = connection_.values(window, "_NET_WM_WINDOW_TYPE", XCB_ATOM_ATOM);
    return std::find(types.begin(), types.end(), connection_.atom("_NET_WM_WINDOW_TYPE_DESKTOP")) != types.end();
}

bool TopLevels::isCovered(const QRect& area, int above, const std::function<bool(xcb_window_t)>& counts) const {
    const QRect inner = area.adjusted(kMargin, kMargin, -kMargin, -kMargin);
    std::vector<xcb_window_t> higher;
    for (const auto window : candidates(inner)) {
        if (place(window) > above && counts(window)) higher.push_back(window);
    }
    const auto kind = kinds(higher);
    for (std::size_t i = 0; i < higher.size(); ++i) {
        if (kind[i] == Kind::unmanaged && hides(higher[i], inner)) return true;
    }
    return false;
}

// A window that covers an area is among the highest, or visible at one of a few sample points. There may be any number
// of invisible or small windows above it.
std::vector<xcb_window_t> TopLevels::candidates(const QRect& area) const {
    std::vector<xcb_translate_coordinates_cookie_t> cookies;
    for (const int x : {area.left(), area.center().x(), area.right()}) {
        for (const int y : {area.top(), area.center().y(), area.bottom()})
            cookies.push_back(xcb_translate_coordinates(connection_.xcb(), connection_.root(), connection_.root(),
                                                        int16_t(x), int16_t(y)));
    }
    std::vector<xcb_window_t> found(windows_.end() - std::ptrdiff_t(std::min(kMaxAtOnce, windows_.size())),
                                    windows_.end());
    for (const auto cookie : cookies) {
        const auto reply = connection_.answer(xcb_translate_coordinates_reply, cookie);
        if (reply && reply->child && std::find(found.begin(), found.end(), reply->child) == found.end())
            found.push_back(reply->child);
    }
    return found;
}

bool TopLevels::hides(xcb_window_t window, const QRect& area) const {
    const auto geometry = connection_.ask(xcb_get_geometry, xcb_get_geometry_reply, window);
    if (!geometry) return false;
    const int border = 2 * geometry->border_width;
    const QRect frame(geometry->x, geometry->y, geometry->width + border, geometry->height + border);
    // A window that lets clicks through is not a locker: it may be an on-screen drawing or a display of pressed keys.
    const QRect inside = area.translated(-geometry->x - geometry->border_width, -geometry->y - geometry->border_width);
    if (!frame.contains(area)) return false;
    // Many programs shape a window only after mapping it.
    xcb_shape_select_input(connection_.xcb(), window, true);
    return fills(window, XCB_SHAPE_SK_BOUNDING, inside) && fills(window, XCB_SHAPE_SK_INPUT, inside);
}

bool TopLevels::fills(xcb_window_t window, xcb_shape_sk_t kind, const QRect& area) const {
    const auto shape = connection_.ask(xcb_shape_get_rectangles, xcb_shape_get_rectangles_reply, window, kind);
    if (!shape) return true;
    const xcb_rectangle_t* first = xcb_shape_get_rectangles_rectangles(shape.get());
    const int count = std::min(xcb_shape_get_rectangles_rectangles_length(shape.get()), int(kMaxWindows));
    QRegion rest = area;
    std::for_each(first, first + count,
                  [&](const xcb_rectangle_t& part) { rest -= QRect(part.x, part.y, part.width, part.height); });
    return rest.isEmpty();
}
