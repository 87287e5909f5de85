#include "platform/linux/DesktopEntries.h"

#include <QDirIterator>
#include <QFile>
#include <QFileInfo>
#include <QProcess>
#include <QRegularExpression>
#include <QSet>
#include <QStandardPaths>

#include "platform/FileUrls.h"

namespace {
bool same(const QString& a, const QString& b) {
    return !a.isEmpty() && a.compare(b, Qt::CaseInsensitive) == 0;
}

/// The command without the arguments that stand for files, icons and names; "%%" is a per cent sign.
QStringList withoutFieldCodes(const QStringList& arguments) {
    QStringList result;
    for (QString part : arguments) {
        if (part.size() == 2 && part[0] == u'%' && part[1] != u'%') continue;
        result.append(part.replace(QStringLiteral("%%"), QStringLiteral("%")));
    }
    return result;
}
}  // namespace

QString DesktopEntry::program() const {
    return command.isEmpty() ? QString() : QFileInfo(command.first()).fileName();
}

bool DesktopEntry::owns(const QString& instance, const QString& className) const {
    if (!windowClass.isEmpty()) return same(windowClass, instance) || same(windowClass, className);
    for (const QString& own : {id, id.section(u'.', -1), program()}) {
        if (same(own, instance) || same(own, className)) return true;
    }
    return false;
}

QList<QByteArray> commandFor(const DesktopEntry& entry, const QUrl& thing) {
    const QByteArray address = thing.toEncoded();
    const QByteArray path = thing.isLocalFile() ? pathOf(thing) : address;
    QList<QByteArray> command;
    bool placed = false;
    for (const QString& text : entry.arguments) {
        const QByteArray argument = text.toUtf8();
        QByteArray word;
        for (qsizetype i = 0; i < argument.size(); ++i) {
            if (argument[i] != '%' || i + 1 == argument.size()) {
                word += argument[i];
                continue;
            }
            const char code = argument[++i];
            const bool file = code == 'f' || code == 'F', url = code == 'u' || code == 'U';
            if (code == '%') word += '%';
            if (code == 'c') word += entry.name.toUtf8();
            if (file || url) word += file ? path : address;
            placed = placed || file || url;
        }
        const bool nothingToStandFor = word.isEmpty() && argument.startsWith('%');
        if (!nothingToStandFor) command.append(word);
    }
    if (!placed) command.append(path);
    return command;
}

std::optional<DesktopEntry> parseDesktopEntry(const QString& id, const QString& text) {
    DesktopEntry entry;
    entry.id = id;
    bool application = false, inGroup = false;
    for (const QStringView line : QStringView(text).split(u'\n')) {
        const QStringView trimmed = line.trimmed();
        if (trimmed.startsWith(u'[')) {
            inGroup = trimmed == QLatin1String("[Desktop Entry]");
            continue;
        }
        const qsizetype equals = trimmed.indexOf(u'=');
        if (!inGroup || trimmed.startsWith(u'#') || equals < 0) continue;
        const QStringView key = trimmed.left(equals).trimmed();
        const QString value = trimmed.mid(equals + 1).trimmed().toString();
        if (key == QLatin1String("Name")) entry.name = value;
        if (key == QLatin1String("Type"))
            application = value == QLatin1String("Application");
        else if (key == QLatin1String("Hidden") && value == QLatin1String("true"))
            return {};
        else if (key == QLatin1String("Terminal"))
            entry.inTerminal = value == QLatin1String("true");
        else if (key == QLatin1String("TryExec"))
            entry.condition = value;
        else if (key == QLatin1String("MimeType"))
            entry.mimeTypes = value.split(u';', Qt::SkipEmptyParts);
        else if (key == QLatin1String("Name") || key.startsWith(QLatin1String("Name[")))
            entry.names.append(value);
        else if (key == QLatin1String("Exec"))
            entry.command = withoutFieldCodes(entry.arguments = QProcess::splitCommand(value));
        else if (key == QLatin1String("StartupWMClass"))
            entry.windowClass = value;
        else if (key == QLatin1String("Categories"))
            entry.terminal = value.split(u';').contains(QLatin1String("TerminalEmulator"));
    }
    if (!application || entry.command.isEmpty()) return {};
    return entry;
}

QList<DesktopEntry> readDesktopEntries(const QStringList& dataFolders) {
    QList<DesktopEntry> entries;
    QSet<QString> seen;
    for (const QString& folder : dataFolders) {
        const QString root = folder + QStringLiteral("/applications/");
        QDirIterator files(root, {QStringLiteral("*.desktop")}, QDir::Files, QDirIterator::Subdirectories);
        while (files.hasNext()) {
            const QString path = files.next();
            // A file in a subfolder is known by its path with dashes.
            QString id = path.mid(root.size()).chopped(8).replace(u'/', u'-');
            if (seen.contains(id)) continue;
            seen.insert(id);
            QFile file(path);
            constexpr qint64 longest = 1 << 20;
            if (!file.open(QFile::ReadOnly)) continue;
            if (auto entry = parseDesktopEntry(id, QString::fromUtf8(file.read(longest)))) entries.append(*entry);
        }
    }
    return entries;
}

QStringList dataFolders() {
    return QStandardPaths::standardLocations(QStandardPaths::GenericDataLocation);
}
