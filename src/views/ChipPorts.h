#pragma once

#include <QString>
#include <functional>

#include "creature/HeldThing.h"

class FileIcons;

/// What the chips need beyond the model, and what they ask for.
struct ChipPorts {
    FileIcons& icons;  ///< must outlive the views
    /// Writes a trace line.
    std::function<void(const QString& line)> trace;
    /// A tap on the notch itself.
    std::function<void()> notchTapped;
    /// A click on a thing.
    std::function<void(const HeldThing&)> use;
    /// Its remove button.
    std::function<void(const HeldThing&)> remove;
    /// Keeps every remove button in sight.
    bool showX = false;
};
