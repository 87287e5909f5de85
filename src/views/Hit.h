#pragma once

#include <QImage>
#include <QList>
#include <QUrl>
#include <functional>
#include <limits>
#include <variant>

#include "platform/MenuItem.h"

/// What lies under a point of the panel, told by what a press there does, however it goes on. What is left empty does
/// nothing. The functions may be called when the thing is gone; they do nothing then.
struct Hit {
    /// A file that can be dragged out to other programs.
    struct File {
        QUrl url;
        QImage picture;  ///< goes along under the pointer
    };
    /// Something that follows the pointer while the button is held.
    struct Slide {
        std::function<void(double way)> move;  ///< points to the right since the press
        std::function<void()> end;
    };

    std::function<void()> tap;
    /// A press that wanders this far, in points to any side, is no longer a tap.
    double tapReach = std::numeric_limits<double>::infinity();
    /// Shows that it is pressed, or no longer.
    std::function<void(bool pressed)> showPressed;
    std::variant<std::monostate, File, Slide> drag;
    /// The menu that a right click opens.
    std::function<QList<MenuItem>()> menu;
};
