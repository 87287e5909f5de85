#pragma once

#include <QString>
#include <QStringList>
#include <functional>

#include "platform/linux/freedesktop/DesktopEntries.h"

/// A top-level window and its WM_CLASS.
struct ApplicationWindow {
    quint32 id = 0;
    QString instance, className;
};

/// How to bring an application to the front: activate `window`, or if that is 0 start `command`. Both empty if neither
/// is possible.
struct ApplicationChoice {
    quint32 window = 0;
    QStringList command;
};

/// The first of `windows` whose application has the display name, or else a window of the user's default terminal, or
/// else the command that starts it. `environmentTerminal` is the value of $TERMINAL and may be empty; `findProgram`
/// returns the path of an executable with links resolved, or an empty string.
ApplicationChoice chooseApplicationOrTerminal(const QString& displayName, const QList<ApplicationWindow>& windows,
                                              const QList<DesktopEntry>& entries, const QString& environmentTerminal,
                                              const std::function<QString(const QString&)>& findProgram);
