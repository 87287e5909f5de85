#pragma once

#include <QString>
#include <QStringList>
#include <optional>

/// What a .desktop file says about an application.
struct DesktopEntry {
    QString id;             ///< the file's name without its folder and suffix
    QStringList names;      ///< in all languages
    QStringList command;    ///< without the places for files
    QString windowClass;    ///< empty where it is not told
    bool terminal = false;  ///< a terminal emulator

    /// The program's name without folders; empty for an empty command.
    QString program() const;
    /// Whether a window with this WM_CLASS is one of the application's, as far as can be told.
    bool owns(const QString& instance, const QString& className) const;
};

/// Reads one entry; absent for what is no startable application.
std::optional<DesktopEntry> parseDesktopEntry(const QString& id, const QString& text);

/// The entries installed for the user, in the order of `dataFolders` (those of the user first); an entry hides all
/// later ones of its id. Reads many files: only away from the main thread.
QList<DesktopEntry> readDesktopEntries(const QStringList& dataFolders);

/// XDG_DATA_HOME and XDG_DATA_DIRS.
QStringList dataFolders();
