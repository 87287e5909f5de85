#include "platform/linux/x11/XTestKeys.h"

#include <xcb/xtest.h>

#include <algorithm>

#include "platform/linux/x11/CompositorWatch.h"

namespace {

// As in XF86keysym.h.
uint32_t symbolOf(MediaKeys::Key key) {
    switch (key) {
        case MediaKeys::Key::playPause:
            return 0x1008ff14;
        case MediaKeys::Key::next:
            return 0x1008ff17;
        case MediaKeys::Key::previous:
            return 0x1008ff16;
    }
    return 0;
}

}  // namespace

bool XTestKeys::isTrusted(const QString&) const {
    // There the keys would reach X clients only.
    if (isXWayland(*connection_)) return false;
    return connection_->extension(xcb_test_id) && codeOf(Key::playPause) != 0;
}

uint8_t XTestKeys::codeOf(Key key) const {
    const auto* setup = xcb_get_setup(connection_->xcb());
    const auto count = uint8_t(setup->max_keycode - setup->min_keycode + 1);
    const auto map =
        connection_->ask(xcb_get_keyboard_mapping, xcb_get_keyboard_mapping_reply, setup->min_keycode, count);
    if (!map || map->keysyms_per_keycode == 0) return 0;
    const auto* symbols = xcb_get_keyboard_mapping_keysyms(map.get());
    const auto* end = symbols + xcb_get_keyboard_mapping_keysyms_length(map.get());
    const auto* found = std::find(symbols, end, symbolOf(key));
    return found == end ? 0 : uint8_t(setup->min_keycode + (found - symbols) / map->keysyms_per_keycode);
}

void XTestKeys::press(const QString&, Key key) {
    const uint8_t code = codeOf(key);
    if (code == 0 || !connection_->extension(xcb_test_id)) return;
    for (const uint8_t type : {XCB_KEY_PRESS, XCB_KEY_RELEASE})
        xcb_test_fake_input(connection_->xcb(), type, code, XCB_CURRENT_TIME, XCB_NONE, 0, 0, 0);
    connection_->flush();
}
