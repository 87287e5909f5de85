#pragma once

#include <QStringList>

// The programs that may be playing music, in the order in which they are asked.

inline const QStringList playerApps{QStringLiteral("Spotify"), QStringLiteral("Music")};
inline const QStringList browserApps{QStringLiteral("Google Chrome"), QStringLiteral("Brave Browser"),
                                     QStringLiteral("Arc"), QStringLiteral("Microsoft Edge"), QStringLiteral("Safari")};

inline bool isBrowser(const QString& name) {
    return browserApps.contains(name);
}
