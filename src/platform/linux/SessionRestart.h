#pragma once

#include <QStringList>

// Sessions that restart their programs, by way of the X session management protocol.

/// Those of the program's `arguments` that are the toolkit's: by "-session ID" a session knows a program again that it
/// restarts. The program's name comes first.
QStringList toolkitArguments(const QStringList& arguments);

/// Tells the session to restart the program with its own `arguments`. Needs the application, and lasts as long.
void restartWith(const QStringList& arguments);
