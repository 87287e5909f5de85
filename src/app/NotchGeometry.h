#pragma once

#include <QRectF>
#include <optional>

#include "platform/Screens.h"

/// Where the notch is and where the panel hangs; screen points, y growing upwards, so a rectangle's top() is its lowest
/// y.
struct NotchGeometry {
    QRectF panelFrame;
    QRectF notch;
    double top = 0;  ///< top edge of the screen
    QRectF place;    ///< the screen's place in the desktop (see Screen)

    friend bool operator==(const NotchGeometry&, const NotchGeometry&) = default;
};

/// The first screen with a camera housing decides, else the main screen with a notch assumed at its top centre. Absent
/// when there is no screen at all.
std::optional<NotchGeometry> notchGeometry(const QList<Screen>& screens);
