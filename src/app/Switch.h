#pragma once

#include <QString>
#include <functional>

/// A part of the creature that the user turns on and off from the menu. Whether it is on is kept in the preferences.
struct Switch {
    QString title;  ///< of the menu's item
    QString key;    ///< of the preference
    /// Start and stop the part; null for one that is not there yet, which cannot be chosen.
    std::function<void()> start, stop;
};
