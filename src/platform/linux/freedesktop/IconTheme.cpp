#include "platform/linux/freedesktop/IconTheme.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QHash>
#include <QSettings>
#include <QStandardPaths>
#include <algorithm>

#include "platform/linux/freedesktop/KeyFile.h"
#include "platform/linux/x11/XSettings.h"

namespace {
/// The keys of an index.theme that matter here.
struct Index {
    struct Folder {
        int size = 0, scale = 1, threshold = 2, smallest = 0, largest = 0;
        QByteArray type = "Threshold";
    };
    QByteArray folders, parents;  // separated by commas
    QHash<QByteArray, Folder> details;
};

Index readIndex(const QString& path) {
    constexpr qint64 kMaxBytes = 1 << 20;
    Index index;
    QFile file(path);
    if (!file.open(QFile::ReadOnly)) return index;
    const QByteArray text = file.read(kMaxBytes);
    QByteArray group;
    for (qsizetype start = 0, end = 0; start < text.size(); start = end + 1) {
        end = text.indexOf('\n', start);
        if (end < 0) end = text.size();
        const QByteArrayView line = QByteArrayView(text).sliced(start, end - start).trimmed();
        if (line.startsWith('[') && line.endsWith(']')) group = line.sliced(1).chopped(1).toByteArray();
        const qsizetype equals = line.indexOf('=');
        if (equals < 0 || group.isEmpty()) continue;
        const QByteArrayView key = line.first(equals).trimmed(), value = line.sliced(equals + 1).trimmed();
        if (group == "Icon Theme") {
            if (key == "Directories" || key == "ScaledDirectories") index.folders += value.toByteArray() + ',';
            if (key == "Inherits") index.parents = value.toByteArray();
            continue;
        }
        Index::Folder& folder = index.details[group];
        constexpr int kMaxSize = 1 << 12;  // pixels
        const int number = std::clamp(value.toInt(), 0, kMaxSize);
        if (key == "Type") folder.type = value.toByteArray();
        if (key == "Size") folder.size = number;
        if (key == "Scale") folder.scale = std::clamp(number, 1, 8);
        if (key == "Threshold") folder.threshold = number;
        if (key == "MinSize") folder.smallest = number;
        if (key == "MaxSize") folder.largest = number;
    }
    return index;
}

std::pair<int, int> rangeOf(const Index::Folder& folder) {
    if (folder.type == "Scalable")
        return {folder.smallest ? folder.smallest : folder.size, folder.largest ? folder.largest : folder.size};
    const int slack = folder.type == "Threshold" ? folder.threshold : 0;
    return {folder.size - slack, folder.size + slack};
}
}  // namespace

IconTheme::IconTheme(const QStringList& names, const QStringList& roots) {
    QStringList seen;
    for (const QString& name : names) add(name, roots, seen);
}

void IconTheme::add(const QString& name, const QStringList& roots, QStringList& seen) {
    constexpr int kMaxThemes = 20;
    if (name.isEmpty() || name.contains(u'/') || seen.contains(name) || seen.size() >= kMaxThemes) return;
    seen.append(name);
    Index index;
    QStringList places;
    for (const QString& root : roots) {
        const QString place = root + u'/' + name + u'/';
        if (!QFileInfo::exists(place)) continue;
        places.append(place);
        if (index.folders.isEmpty()) index = readIndex(place + QStringLiteral("index.theme"));
    }
    Theme theme;
    for (const QByteArray& path : index.folders.split(',')) {
        const auto details = index.details.value(path.trimmed());
        if (details.size == 0) continue;
        const auto [smallest, largest] = rangeOf(details);
        for (const QString& place : places) {
            const QString folder = place + QString::fromUtf8(path.trimmed()) + u'/';
            if (QFileInfo::exists(folder)) theme.append({folder, smallest * details.scale, largest * details.scale});
        }
    }
    if (!theme.isEmpty()) themes_.append(theme);
    for (const QByteArray& parent : index.parents.split(',')) {
        // hicolor is the fallback of every theme, so it comes after all chosen ones.
        if (parent.trimmed() != "hicolor") add(QString::fromUtf8(parent.trimmed()), roots, seen);
    }
}

int IconTheme::Folder::distance(int pixels) const {
    constexpr int kWorseThanAnyLarger = 1 << 20;
    if (pixels > largest) return kWorseThanAnyLarger + pixels - largest;
    return std::max(smallest - pixels, 0);
}

QString IconTheme::find(const QStringList& icons, int pixels) const {
    for (const Theme& theme : themes_) {
        Theme folders = theme;
        std::stable_sort(folders.begin(), folders.end(),
                         [&](const Folder& a, const Folder& b) { return a.distance(pixels) < b.distance(pixels); });
        for (const QString& icon : icons) {
            if (icon.isEmpty() || icon.contains(u'/')) continue;
            for (const Folder& folder : folders) {
                for (const char* suffix : {".png", ".svg"}) {
                    QString file = folder.path + icon + QLatin1String(suffix);
                    if (QFileInfo::exists(file)) return file;
                }
            }
        }
    }
    return {};
}

QStringList iconThemeNames() {
    QStringList names{xSetting("Net/IconThemeName")};
    const auto configs = QStandardPaths::standardLocations(QStandardPaths::GenericConfigLocation);
    const bool plasma = qEnvironmentVariable("XDG_CURRENT_DESKTOP").split(u':').contains(QLatin1String("KDE"));
    if (plasma) {
        names.clear();
        for (const QString& folder : configs) {
            // GKeyFile cannot parse KDE's nested groups.
            const QSettings globals(folder + QStringLiteral("/kdeglobals"), QSettings::IniFormat);
            names.append(globals.value(QStringLiteral("Icons/Theme")).toString());
        }
        names.append(QStringLiteral("breeze"));
    }
    for (const char* file : {"/gtk-4.0/settings.ini", "/gtk-3.0/settings.ini"})
        for (const QString& folder : configs)
            names.append(keyFileValue(QFile::encodeName(folder) + file, "Settings", "gtk-icon-theme-name"));
    for (const char* common : {"Adwaita", "breeze", "Papirus", "gnome", "oxygen", "hicolor"})
        names.append(QLatin1String(common));
    return names;
}

QStringList iconRoots() {
    QStringList roots{QDir::homePath() + QStringLiteral("/.icons")};
    for (const QString& folder : QStandardPaths::standardLocations(QStandardPaths::GenericDataLocation))
        roots.append(folder + QStringLiteral("/icons"));
    return roots;
}
