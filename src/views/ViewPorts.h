#pragma once

#include <QList>
#include <QString>
#include <functional>

#include "creature/HeldThing.h"
#include "platform/MenuItem.h"

class FileIcons;

/// What the views need besides the model, and the actions that they trigger.
struct ViewPorts {
    FileIcons& icons;                                         ///< must outlive the views
    std::function<void(const QString& line)> trace;           ///< writes a trace line
    std::function<void()> notchTapped;                        ///< called by a tap on the creature
    std::function<void(const HeldThing&)> use;                ///< called by a click on a held thing
    std::function<void(const HeldThing&)> remove;             ///< called by its remove button
    std::function<QList<MenuItem>(const HeldThing&)> menu;    ///< its context menu
    std::function<void(const QString& word)> onMusicCommand;  ///< called by the music buttons
    bool showX = false;                                       ///< always show the remove buttons
};
