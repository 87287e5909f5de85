#pragma once

#include <QString>
#include <QStringList>
#include <QUrl>

/// What a .desktop file says about an application.
struct DesktopEntry {
    QString id;                  ///< the file's name without its folder and suffix
    QStringList names;           ///< in no particular language and in the user's
    QStringList command;         ///< without the places for files
    QString windowClass;         ///< empty where it is not told
    bool terminal = false;       ///< a terminal emulator
    bool inTerminal = false;     ///< to be started in one
    QStringList arguments = {};  ///< the command with the places for files, such as "%U"
    QStringList mimeTypes = {};  ///< of the files that it opens

    /// The program's name without folders; empty for an empty command.
    QString program() const;
    /// Whether a window with this WM_CLASS is one of the application's, as far as can be told.
    bool owns(const QString& instance, const QString& className) const;
};

/// The command that opens `thing`, a file or a link, with the application.
QList<QByteArray> commandFor(const DesktopEntry& entry, const QUrl& thing);

/// The applications that are installed for the user and whose program is there. Reads many files: only away from the
/// main thread.
QList<DesktopEntry> installedApplications();

/// Those for one of `types`, MIME types or "x-scheme-handler/…", that need no terminal, best first: those for the first
/// type, with the user's default before the others. At most `max`. Reads many files: only away from the main thread.
QList<DesktopEntry> applicationsFor(const QStringList& types, int max);
