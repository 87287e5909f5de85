#include "platform/linux/IconTheme.h"

#include <QDir>
#include <QFileInfo>
#include <QStandardPaths>
#include <algorithm>

#include "platform/linux/DesktopEntries.h"
#include "platform/linux/KeyFile.h"
#include "platform/linux/x11/XSettings.h"

IconTheme::IconTheme(const QStringList& names, const QStringList& roots) {
    QStringList seen;
    for (const QString& name : names) add(name, roots, seen);
}

void IconTheme::add(const QString& name, const QStringList& roots, QStringList& seen) {
    constexpr int mostThemes = 20;
    if (name.isEmpty() || name.contains(u'/') || seen.contains(name) || seen.size() >= mostThemes) return;
    seen.append(name);
    Theme theme;
    KeyFile index;
    for (const QString& root : roots) {
        const QString folder = root + u'/' + name + u'/';
        if (!QFileInfo::exists(folder)) continue;
        theme.roots.append(folder);
        if (index.isEmpty()) index = readKeyFile(folder + QStringLiteral("index.theme"));
    }
    const auto general = index.value(QStringLiteral("Icon Theme"));
    for (const char* key : {"Directories", "ScaledDirectories"}) {
        for (const QString& path : listed(general.value(QLatin1String(key)), u',')) {
            const auto keys = index.value(path);
            const auto number = [&](const char* what, int otherwise) {
                bool valid = false;
                const int value = keys.value(QLatin1String(what)).toInt(&valid);
                return valid ? value : otherwise;
            };
            const QString type = keys.value(QStringLiteral("Type"), QStringLiteral("Threshold"));
            const int size = number("Size", 0), scale = std::clamp(number("Scale", 1), 1, 8);
            const int slack = type == QLatin1String("Threshold") ? number("Threshold", 2) : 0;
            Folder folder{path, size - slack, size + slack};
            if (type == QLatin1String("Scalable")) folder = {path, number("MinSize", size), number("MaxSize", size)};
            folder.smallest *= scale;
            folder.largest *= scale;
            if (size > 0) theme.folders.append(folder);
        }
    }
    if (!theme.folders.isEmpty()) themes_.append(theme);
    for (const QString& parent : listed(general.value(QStringLiteral("Inherits")), u',')) {
        // Every theme's last resort: it comes after all that were chosen.
        if (parent != QLatin1String("hicolor")) add(parent, roots, seen);
    }
}

int IconTheme::Folder::distance(int pixels) const {
    constexpr int worseThanAnyLarger = 1 << 20;
    if (pixels > largest) return worseThanAnyLarger + pixels - largest;
    return std::max(smallest - pixels, 0);
}

QString IconTheme::find(const QStringList& icons, int pixels) const {
    for (const Theme& theme : themes_) {
        QList<Folder> folders = theme.folders;
        std::stable_sort(folders.begin(), folders.end(),
                         [&](const Folder& a, const Folder& b) { return a.distance(pixels) < b.distance(pixels); });
        for (const QString& icon : icons) {
            if (icon.isEmpty() || icon.contains(u'/')) continue;
            for (const Folder& folder : folders) {
                for (const QString& root : theme.roots) {
                    for (const char* suffix : {".png", ".svg"}) {
                        const QString file = root + folder.path + u'/' + icon + QLatin1String(suffix);
                        if (QFileInfo::exists(file)) return file;
                    }
                }
            }
        }
    }
    return {};
}

QStringList iconThemeNames() {
    QStringList names{xSetting("Net/IconThemeName")};
    const auto configs = QStandardPaths::standardLocations(QStandardPaths::GenericConfigLocation);
    const auto tell = [&](const char* file, const char* group, const char* key) {
        for (const QString& folder : configs)
            names.append(
                readKeyFile(folder + QLatin1String(file)).value(QLatin1String(group)).value(QLatin1String(key)));
    };
    const bool plasma = qEnvironmentVariable("XDG_CURRENT_DESKTOP").split(u':').contains(QLatin1String("KDE"));
    if (plasma) {
        names.clear();
        tell("/kdeglobals", "Icons", "Theme");
        names.append(QStringLiteral("breeze"));
    }
    tell("/gtk-4.0/settings.ini", "Settings", "gtk-icon-theme-name");
    tell("/gtk-3.0/settings.ini", "Settings", "gtk-icon-theme-name");
    for (const char* common : {"Adwaita", "breeze", "Papirus", "gnome", "oxygen", "hicolor"})
        names.append(QLatin1String(common));
    return names;
}

QStringList iconRoots() {
    QStringList roots{QDir::homePath() + QStringLiteral("/.icons")};
    for (const QString& folder : dataFolders()) roots.append(folder + QStringLiteral("/icons"));
    return roots;
}
