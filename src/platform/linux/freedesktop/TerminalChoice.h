#pragma once

#include <QString>
#include <QStringList>
#include <functional>
#include <optional>

#include "platform/linux/freedesktop/DesktopEntries.h"

/// A top-level window and its WM_CLASS.
struct ApplicationWindow {
    quint32 id = 0;
    QString instance, className;
};

/// What to do to bring an application to the front: activate `window`, or start `command` where it is 0. Both empty:
/// nothing can be done.
struct ApplicationChoice {
    quint32 window = 0;
    QStringList command;
};

/// The first of `windows` whose application has the display name, else one of the user's default terminal, else the
/// terminal to start. `environmentTerminal` is the user's own setting and may be empty; `findProgram` gives the path of
/// an executable with links resolved, or an empty string.
ApplicationChoice chooseApplicationOrTerminal(const QString& displayName, const QList<ApplicationWindow>& windows,
                                              const QList<DesktopEntry>& entries, const QString& environmentTerminal,
                                              const std::function<QString(const QString&)>& findProgram);
