#pragma once

#include <QImage>
#include <QList>
#include <QUrl>
#include <functional>
#include <limits>
#include <variant>

#include "platform/MenuItem.h"

/// What lies under a point of the panel: the actions for a tap, a press, a drag and a right click there. Empty members
/// do nothing. The functions may be called after the thing is gone; they then do nothing.
struct Hit {
    /// A file that can be dragged out to other programs.
    struct File {
        QUrl url;
        QImage picture;  ///< moves with the pointer
    };
    /// Something that follows the pointer while the button is held.
    struct Slide {
        std::function<void(double offset)> move;  ///< points to the right since the press
        std::function<void()> end;
    };

    std::function<void()> tap;
    /// A press that moves this far, in points on either axis, is no longer a tap.
    double tapReach = std::numeric_limits<double>::infinity();
    /// Shows the thing as pressed or released.
    std::function<void(bool pressed)> showPressed;
    std::variant<std::monostate, File, Slide> drag;
    /// The menu that a right click opens.
    std::function<QList<MenuItem>()> menu;
};
