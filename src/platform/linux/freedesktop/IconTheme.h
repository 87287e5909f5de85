#pragma once

#include <QList>
#include <QString>
#include <QStringList>

/// Finds icon files in a list of themes. Reads many files on construction and some on each call: only away from the
/// main thread, from any number of threads.
class IconTheme {
 public:
    /// `names` are the themes' folders, best first; each is followed by its parents. `roots` are the folders that
    /// contain themes, the user's first.
    IconTheme(const QStringList& names, const QStringList& roots);

    /// The .png or .svg file of the first of `icons` in the first theme that has one, in the size closest to `pixels`,
    /// preferring larger ones. Empty if there is none.
    QString find(const QStringList& icons, int pixels) const;

 private:
    struct Folder {
        QString path;           // ends in a slash
        int smallest, largest;  // pixels
        int distance(int pixels) const;
    };
    using Theme = QList<Folder>;

    void add(const QString& name, const QStringList& roots, QStringList& seen);

    QList<Theme> themes_;
};

/// The icon themes in the user's settings, followed by some common ones.
QStringList iconThemeNames();

/// The folders that contain icon themes, the user's first.
QStringList iconRoots();
