#pragma once

#include <QList>
#include <QPoint>
#include <QStringList>

#include "platform/MenuItem.h"

/// A description of the menu for the terminal: one line per top-level row, without line ends.
QStringList describeMenu(const QList<MenuItem>& items);

/// Shows `items` as a menu at `position` (Qt's global coordinates) and runs the action of the chosen row. `translucent`
/// windows get round corners; the desktop must blend them. Returns at once; the menu deletes itself when it closes.
void popUp(const QList<MenuItem>& items, const QPoint& position, bool translucent);

/// Closes the menu that popUp() opened, if it is still open. A menu that could not grab the pointer, because another
/// program's menu had grabbed it, does not notice presses elsewhere.
void closePopUp();
