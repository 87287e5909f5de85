#pragma once

#include <QList>
#include <QRectF>
#include <functional>
#include <optional>

/// One screen. Rectangles are in points, y grows upwards, and the origin is the bottom left corner of the main screen.
struct Screen {
    QRectF frame;  ///< QRectF::top() is the lowest y here, QRectF::bottom() the screen's top edge
    /// The strips to the left and right of the camera housing; both absent on a screen without one.
    std::optional<QRectF> auxiliaryTopLeftArea;
    std::optional<QRectF> auxiliaryTopRightArea;
    bool main = false;
    /// Where the screen is on the desktop, in the desktop's own units. Only for detecting that it moved, which the main
    /// screen's frame does not show.
    QRectF place{};

    friend bool operator==(const Screen&, const Screen&) = default;
};

/// The screens of the desktop. Main thread only.
class Screens {
 public:
    virtual ~Screens() = default;

    /// In the desktop's own order; empty if there is none.
    virtual QList<Screen> screens() const = 0;

    /// Called after screens were added, removed, resized, moved or made primary; several changes may share one call.
    std::function<void()> onChange;
};
