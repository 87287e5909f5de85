#pragma once

#include <QStringList>

// Restarting by the session manager (X session management protocol).

/// The program's name and those of its `arguments` that are for Qt: "-session ID", by which a session manager
/// recognises a program that it restarts.
QStringList toolkitArguments(const QStringList& arguments);

/// Tells the session manager to restart the program with its own `arguments`. Needs the QApplication.
void restartWith(const QStringList& arguments);
