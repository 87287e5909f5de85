#pragma once

#include <QString>
#include <QStringList>

/// By which names a program that may play music goes on this desktop.
struct MediaApplication {
    QString name;         ///< as the Players port knows it
    QStringList media;    ///< in lower case: its MPRIS name, identity or desktop entry
    QStringList classes;  ///< in lower case: the classes of its windows
    QStringList titles;   ///< what it calls itself at the end of its windows' titles
};

/// The browsers, Spotify, and last the row for every other player.
const QList<MediaApplication>& mediaApplications();

/// The row with this name, which must be in the table.
const MediaApplication& mediaApplication(const QString& name);

/// The title of the tab that a window of `browser` shows, from the window's own. Private windows keep theirs: what is
/// heard in them is nobody's business.
QString tabTitle(const QString& windowTitle, const MediaApplication& browser);

/// The row of an MPRIS player: `service` is its bus name, `desktopEntry` and `identity` are what it says of itself.
const MediaApplication& applicationOfPlayer(const QString& service, const QString& desktopEntry,
                                            const QString& identity);
