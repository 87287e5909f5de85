#pragma once

#include <QString>
#include <QStringList>
#include <QUrl>

/// An application's .desktop file.
struct DesktopEntry {
    QString id;                  ///< the file's name without its folder and suffix
    QStringList names;           ///< in no particular language and in the user's
    QStringList command;         ///< without the places for files
    QString windowClass;         ///< empty where it is not told
    bool isTerminal = false;     ///< a terminal emulator
    bool needsTerminal = false;  ///< to be started in one
    QStringList arguments = {};  ///< the command with the places for files, such as "%U"
    QStringList mimeTypes = {};  ///< of the files that it opens

    /// The program's name without folders; empty for an empty command.
    QString program() const;
    /// Whether a window with this WM_CLASS seems to belong to the application.
    bool owns(const QString& instance, const QString& className) const;
};

/// The command that opens `thing`, a file or a link, with the application.
QList<QByteArray> commandFor(const DesktopEntry& entry, const QUrl& thing);

/// The applications that are installed for the user and whose program exists. Reads many files: only away from the main
/// thread.
QList<DesktopEntry> installedApplications();

/// At most `max` applications for one of `types` (MIME types or "x-scheme-handler/…") that need no terminal. Ordered by
/// type, with the user's default for each type first. Reads many files: only away from the main thread.
QList<DesktopEntry> applicationsFor(const QStringList& types, int max);
