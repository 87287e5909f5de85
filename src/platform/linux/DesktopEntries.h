#pragma once

#include <QString>
#include <QStringList>
#include <QUrl>
#include <optional>

/// What a .desktop file says about an application.
struct DesktopEntry {
    QString id;                  ///< the file's name without its folder and suffix
    QStringList names;           ///< in all languages
    QStringList command;         ///< without the places for files
    QString windowClass;         ///< empty where it is not told
    bool terminal = false;       ///< a terminal emulator
    bool inTerminal = false;     ///< to be started in one
    QString name = {};           ///< in no particular language
    QStringList arguments = {};  ///< the command with the places for files, such as "%U"
    QStringList mimeTypes = {};  ///< of the files that it opens
    QString condition = {};      ///< a program that must be installed; may be empty

    /// The program's name without folders; empty for an empty command.
    QString program() const;
    /// Whether a window with this WM_CLASS is one of the application's, as far as can be told.
    bool owns(const QString& instance, const QString& className) const;
};

/// The command that opens `thing`, a file or a link, with the application.
QList<QByteArray> commandFor(const DesktopEntry& entry, const QUrl& thing);

/// Reads one entry; absent for what is no startable application.
std::optional<DesktopEntry> parseDesktopEntry(const QString& id, const QString& text);

/// The entries installed for the user, in the order of `dataFolders` (those of the user first); an entry hides all
/// later ones of its id. Reads many files: only away from the main thread.
QList<DesktopEntry> readDesktopEntries(const QStringList& dataFolders);

/// XDG_DATA_HOME and XDG_DATA_DIRS.
QStringList dataFolders();
