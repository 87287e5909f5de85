#pragma once

#include <QList>
#include <QString>
#include <QStringList>

/// The icons of some themes as files. Reads many files when it is made and asks for some when it is used: only away
/// from the main thread, from any number of threads.
class IconTheme {
 public:
    /// `names` are the themes' folders, best first; each is followed by those that it inherits from. `roots` hold the
    /// themes, the user's first.
    IconTheme(const QStringList& names, const QStringList& roots);

    /// The file, a .png or an .svg, of the first of `icons` that the first possible theme has, in the size that comes
    /// closest to `pixels`, rather a larger one. Empty if there is none.
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

/// The icon themes that the user has chosen, as far as the desktop tells, and then some that are often installed.
QStringList iconThemeNames();

/// Where icon themes are, the user's first.
QStringList iconRoots();
