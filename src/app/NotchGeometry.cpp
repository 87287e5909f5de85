#include "app/NotchGeometry.h"

#include <algorithm>

namespace {

constexpr double kPanelWidth = 360;
constexpr double kPanelHeight = 230;
constexpr double kAssumedWidth = 185;
constexpr double kAssumedHeight = 32;

bool hasHousing(const Screen& screen) {
    return screen.auxiliaryTopLeftArea && screen.auxiliaryTopRightArea;
}

const Screen* choose(const QList<Screen>& screens) {
    auto found = std::find_if(screens.begin(), screens.end(), hasHousing);
    if (found == screens.end())
        found = std::find_if(screens.begin(), screens.end(), [](const Screen& screen) { return screen.main; });
    if (found == screens.end()) found = screens.begin();
    return found == screens.end() ? nullptr : &*found;
}

QRectF notchOf(const Screen& screen) {
    if (hasHousing(screen)) {
        const QRectF& left = *screen.auxiliaryTopLeftArea;
        const QRectF& right = *screen.auxiliaryTopRightArea;
        return {left.right(), left.top(), right.left() - left.right(), left.height()};
    }
    return {screen.frame.center().x() - kAssumedWidth / 2, screen.frame.bottom() - kAssumedHeight, kAssumedWidth,
            kAssumedHeight};
}

}  // namespace

std::optional<NotchGeometry> notchGeometry(const QList<Screen>& screens) {
    const Screen* screen = choose(screens);
    if (!screen) return {};
    const QRectF notch = notchOf(*screen);
    const double top = screen->frame.bottom();
    const QRectF panel(notch.center().x() - kPanelWidth / 2, top - kPanelHeight, kPanelWidth, kPanelHeight);
    return NotchGeometry{panel, notch, top, screen->place};
}
