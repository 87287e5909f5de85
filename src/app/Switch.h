#pragma once

#include <QString>
#include <functional>

/// A part of the creature that the user turns on and off in the menu. Its state is stored in the preferences.
struct Switch {
    QString title;  ///< of the menu item
    QString key;    ///< of the preference
    /// Start and stop the part; null for a part that does not exist yet, whose menu item is disabled.
    std::function<void()> start, stop;
};
