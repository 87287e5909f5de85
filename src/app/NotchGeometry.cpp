#include "app/NotchGeometry.h"

#include <algorithm>

#include "creature/NotchModel.h"
#include "views/RootView.h"

namespace {

constexpr double kAssumedWidth = NotchModel::kDefaultNotchWidth;
constexpr double kAssumedHeight = NotchModel::kDefaultNotchHeight;

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
    const QSizeF size(RootView::kPanelWidth, RootView::kPanelHeight);
    const QRectF panel(QPointF(notch.center().x() - size.width() / 2, top - size.height()), size);
    return NotchGeometry{panel, notch, top, screen->place};
}
