#pragma once

#include <QRectF>
#include <optional>

#include "platform/Screens.h"

/// Where the notch and the panel are. Screen points with y growing upwards, so a rectangle's top() is its lowest y.
struct NotchGeometry {
    QRectF panelFrame;
    QRectF notch;
    double top = 0;  ///< top edge of the screen
    QRectF place;    ///< the screen's place in the desktop (see Screen)

    friend bool operator==(const NotchGeometry&, const NotchGeometry&) = default;
};

/// On the first screen with a camera housing, or else on the main screen, with a notch assumed at its top centre.
/// Absent if there is no screen at all.
std::optional<NotchGeometry> notchGeometry(const QList<Screen>& screens);
