#pragma once

#include "platform/linux/DesktopEntries.h"

/// The installed programs for one of `types`, MIME types or "x-scheme-handler/…", best first: those for the first type,
/// with the user's default before the others. At most `most`. Reads many files: only away from the main thread.
QList<DesktopEntry> programsFor(const QStringList& types, int most);
