#include "platform/linux/ProgramsFor.h"

#include <QHash>
#include <QSet>
#include <QStandardPaths>

#include "platform/linux/KeyFile.h"

namespace {
/// What the user and the desktop have chosen, most important first.
QList<KeyFile> choices() {
    QStringList names;
    for (const QString& desktop : qEnvironmentVariable("XDG_CURRENT_DESKTOP").split(u':', Qt::SkipEmptyParts))
        names.append(u'/' + desktop.toLower() + QStringLiteral("-mimeapps.list"));
    names.append(QStringLiteral("/mimeapps.list"));
    QStringList folders = QStandardPaths::standardLocations(QStandardPaths::GenericConfigLocation);
    for (const QString& folder : dataFolders()) folders.append(folder + QStringLiteral("/applications"));
    QList<KeyFile> files;
    for (const QString& folder : folders) {
        for (const QString& name : names) files.append(readKeyFile(folder + name));
    }
    return files;
}

/// The identifiers of the entries that the files name for the type.
QStringList chosen(const QList<KeyFile>& files, const char* group, const QString& type) {
    QStringList ids;
    for (const KeyFile& file : files) {
        for (const QString& id : listed(file.value(QLatin1String(group)).value(type), u';'))
            if (id.endsWith(QLatin1String(".desktop"))) ids.append(id.chopped(8));
    }
    return ids;
}

bool startable(const DesktopEntry& entry) {
    const auto installed = [](const QString& program) { return !QStandardPaths::findExecutable(program).isEmpty(); };
    return !entry.inTerminal && installed(entry.command.first()) &&
           (entry.condition.isEmpty() || installed(entry.condition));
}
}  // namespace

QList<DesktopEntry> programsFor(const QStringList& types, int most) {
    const auto entries = readDesktopEntries(dataFolders());
    QHash<QString, const DesktopEntry*> byId;
    for (const DesktopEntry& entry : entries) byId.insert(entry.id, &entry);
    const auto files = choices();

    QList<DesktopEntry> programs;
    QSet<QString> seen;
    const auto add = [&](const QString& id) {
        const DesktopEntry* entry = byId.value(id);
        if (!entry || programs.size() >= most || seen.contains(id)) return;
        seen.insert(id);
        if (startable(*entry)) programs.append(*entry);
    };
    for (const QString& type : types) {
        for (const QString& id : chosen(files, "Default Applications", type)) add(id);
        for (const QString& id : chosen(files, "Added Associations", type)) add(id);
        const QStringList removed = chosen(files, "Removed Associations", type);
        for (const DesktopEntry& entry : entries)
            if (entry.mimeTypes.contains(type) && !removed.contains(entry.id)) add(entry.id);
    }
    return programs;
}
