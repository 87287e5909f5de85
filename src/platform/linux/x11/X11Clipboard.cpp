#include "platform/linux/x11/X11Clipboard.h"

#include <QClipboard>
#include <QGuiApplication>

#include "platform/linux/x11/SelectionReader.h"

namespace {
constexpr double kTimeout = 1;  // seconds
}  // namespace

void leaveX11Clipboard(const std::shared_ptr<X11Connection>& connection, MainLoop& loop, std::function<void()> done) {
    if (!QGuiApplication::clipboard()->ownsClipboard()) return loop.post(std::move(done));
    const auto manager = std::make_shared<SelectionReader>(connection, loop, "CLIPBOARD_MANAGER", XCB_CURRENT_TIME);
    // The reader lives until it has answered.
    manager->read(connection->atom("SAVE_TARGETS"), {.stallTimeout = kTimeout},
                  [manager, done = std::move(done)](const auto&) { done(); });
}
