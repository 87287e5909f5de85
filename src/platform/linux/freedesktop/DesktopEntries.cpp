#include "platform/linux/freedesktop/DesktopEntries.h"

#include <gio/gdesktopappinfo.h>

#include <QFileInfo>
#include <QSet>
#include <memory>

#include "platform/FileUrls.h"

namespace {
bool same(const QString& a, const QString& b) {
    return !a.isEmpty() && a.compare(b, Qt::CaseInsensitive) == 0;
}

/// The command without field codes, which stand for files, icons and names; "%%" becomes "%".
QStringList withoutFieldCodes(const QStringList& arguments) {
    QStringList result;
    for (QString part : arguments) {
        if (part.size() == 2 && part[0] == u'%' && part[1] != u'%') continue;
        result.append(part.replace(QStringLiteral("%%"), QStringLiteral("%")));
    }
    return result;
}

QStringList wordsOf(const char* commandLine) {
    char** words = nullptr;
    QStringList result;
    if (!commandLine || !g_shell_parse_argv(commandLine, nullptr, &words, nullptr)) return result;
    for (char** word = words; *word; ++word) result.append(QString::fromUtf8(*word));
    g_strfreev(words);
    return result;
}

QString textOf(GDesktopAppInfo* info, const char* key) {
    const std::unique_ptr<char, decltype(&g_free)> text(g_desktop_app_info_get_string(info, key), &g_free);
    return QString::fromUtf8(text.get());
}

DesktopEntry entryOf(GAppInfo* application) {
    GDesktopAppInfo* info = G_DESKTOP_APP_INFO(application);
    DesktopEntry entry;
    entry.id = QString::fromUtf8(g_app_info_get_id(application));
    if (entry.id.endsWith(QLatin1String(".desktop"))) entry.id.chop(8);
    entry.names = {textOf(info, G_KEY_FILE_DESKTOP_KEY_NAME), QString::fromUtf8(g_app_info_get_name(application))};
    entry.arguments = wordsOf(g_app_info_get_commandline(application));
    entry.command = withoutFieldCodes(entry.arguments);
    entry.windowClass = QString::fromUtf8(g_desktop_app_info_get_startup_wm_class(info));
    entry.isTerminal = textOf(info, G_KEY_FILE_DESKTOP_KEY_CATEGORIES).split(u';').contains(u"TerminalEmulator");
    entry.needsTerminal = g_desktop_app_info_get_boolean(info, G_KEY_FILE_DESKTOP_KEY_TERMINAL);
    if (const char** types = g_app_info_get_supported_types(application))
        for (; *types; ++types) entry.mimeTypes.append(QString::fromUtf8(*types));
    return entry;
}

/// The entries that can be started. Takes ownership of the list and its elements.
QList<DesktopEntry> entriesOf(GList* applications) {
    QList<DesktopEntry> entries;
    for (const GList* node = applications; node; node = node->next) {
        const DesktopEntry entry = entryOf(G_APP_INFO(node->data));
        if (!entry.command.isEmpty()) entries.append(entry);
    }
    g_list_free_full(applications, g_object_unref);
    return entries;
}

/// The applications associated with the types; if there is no association cache, those whose entries claim a type.
QList<DesktopEntry> candidatesFor(const QStringList& types) {
    QList<DesktopEntry> candidates;
    for (const QString& type : types) {
        const QByteArray name = type.toUtf8();
        if (GAppInfo* first = g_app_info_get_default_for_type(name.constData(), false))
            candidates += entriesOf(g_list_append(nullptr, first));
        candidates += entriesOf(g_app_info_get_recommended_for_type(name.constData()));
    }
    if (!candidates.isEmpty()) return candidates;
    const auto all = installedApplications();
    for (const QString& type : types)
        for (const DesktopEntry& entry : all)
            if (entry.mimeTypes.contains(type)) candidates.append(entry);
    return candidates;
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
            if (code == 'c') word += entry.names.last().toUtf8();
            if (file || url) word += file ? path : address;
            placed = placed || file || url;
        }
        const bool nothingToStandFor = word.isEmpty() && argument.startsWith('%');
        if (!nothingToStandFor) command.append(word);
    }
    if (!placed) command.append(path);
    return command;
}

QList<DesktopEntry> installedApplications() {
    return entriesOf(g_app_info_get_all());
}

QList<DesktopEntry> applicationsFor(const QStringList& types, int max) {
    QList<DesktopEntry> applications;
    QSet<QString> seen;
    for (const DesktopEntry& entry : candidatesFor(types)) {
        if (seen.contains(entry.id) || entry.needsTerminal || applications.size() >= max) continue;
        seen.insert(entry.id);
        applications.append(entry);
    }
    return applications;
}
