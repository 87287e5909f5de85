#pragma once

#include <QList>
#include <QString>
#include <functional>

#include "creature/HeldThing.h"
#include "platform/MenuItem.h"

class FileIcons;

/// What the views need beyond the model, and what they ask for.
struct ViewPorts {
    FileIcons& icons;  ///< must outlive the views
    /// Writes a trace line.
    std::function<void(const QString& line)> trace;
    /// A tap on the creature.
    std::function<void()> notchTapped;
    /// A click on a held thing.
    std::function<void(const HeldThing&)> use;
    /// Its remove button.
    std::function<void(const HeldThing&)> remove;
    /// Its menu.
    std::function<QList<MenuItem>(const HeldThing&)> menu;
    /// Keeps every remove button in sight.
    bool showX = false;
};
