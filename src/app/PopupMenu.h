#pragma once

#include <QList>
#include <QPoint>
#include <QStringList>

#include "platform/MenuItem.h"

/// The lines that describe the menu in a terminal, one per top-level row, without line ends.
QStringList describeMenu(const QList<MenuItem>& items);

/// Shows `items` as a menu at `position` (Qt's global coordinates) and runs the action of the chosen row. Its corners
/// are round where the desktop can blend a `translucent` window. Returns at once; the menu deletes itself when it
/// closes.
void popUp(const QList<MenuItem>& items, const QPoint& position, bool translucent);

/// Closes the menu that popUp() has opened, if it is still there. A menu that could not take the pointer, because
/// another program's menu had it, does not hear of a press elsewhere by itself.
void closePopUp();
