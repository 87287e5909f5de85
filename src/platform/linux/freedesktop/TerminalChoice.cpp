#include "platform/linux/freedesktop/TerminalChoice.h"

#include <QFileInfo>
#include <QProcess>
#include <algorithm>

#include "platform/linux/freedesktop/ApplicationNames.h"

namespace {
struct Terminal {
    QStringList command;
    /// Its entry; null if it has none or the command only selects a terminal.
    const DesktopEntry* entry = nullptr;
    QString program;
};

template <class Matches>
quint32 firstWindow(const QList<ApplicationWindow>& windows, Matches matches) {
    const auto found = std::find_if(windows.begin(), windows.end(), matches);
    return found == windows.end() ? 0 : found->id;
}

bool named(const ApplicationWindow& window, const QString& displayName, const QStringList& classes,
           const QList<DesktopEntry>& entries) {
    if (window.instance == displayName || window.className == displayName) return true;
    if (classes.contains(window.instance, Qt::CaseInsensitive) ||
        classes.contains(window.className, Qt::CaseInsensitive))
        return true;
    return std::any_of(entries.begin(), entries.end(), [&](const DesktopEntry& entry) {
        return entry.names.contains(displayName) && entry.owns(window.instance, window.className);
    });
}

const DesktopEntry* entryOfProgram(const QList<DesktopEntry>& entries, const QString& program) {
    const auto found = std::find_if(entries.begin(), entries.end(), [&](const DesktopEntry& entry) {
        return entry.isTerminal && entry.program() == program;
    });
    return found == entries.end() ? nullptr : &*found;
}

std::optional<Terminal> defaultTerminal(const QList<DesktopEntry>& entries, const QString& environmentTerminal,
                                        const std::function<QString(const QString&)>& findProgram) {
    for (const QString& line :
         {environmentTerminal, QStringLiteral("xdg-terminal-exec"), QStringLiteral("x-terminal-emulator")}) {
        const QStringList command = QProcess::splitCommand(line);
        const QString path = command.isEmpty() ? QString() : findProgram(command.first());
        if (path.isEmpty()) continue;
        QString program = QFileInfo(path).fileName();
        // Debian's alternatives for some terminals are wrapper scripts with this suffix.
        if (program.endsWith(QLatin1String(".wrapper"))) program.chop(8);
        return Terminal{command, entryOfProgram(entries, program), program};
    }
    const auto first = std::find_if(entries.begin(), entries.end(), [&](const DesktopEntry& entry) {
        return entry.isTerminal && !findProgram(entry.command.first()).isEmpty();
    });
    if (first == entries.end()) return {};
    return Terminal{first->command, &*first, first->program()};
}
}  // namespace

ApplicationChoice chooseApplicationOrTerminal(const QString& displayName, const QList<ApplicationWindow>& windows,
                                              const QList<DesktopEntry>& entries, const QString& environmentTerminal,
                                              const std::function<QString(const QString&)>& findProgram) {
    const QStringList classes = windowClassesOf(displayName);
    const auto wanted = firstWindow(
        windows, [&](const ApplicationWindow& window) { return named(window, displayName, classes, entries); });
    if (wanted) return {wanted, {}};

    const auto terminal = defaultTerminal(entries, environmentTerminal, findProgram);
    if (!terminal) return {};
    const bool anyTerminal = terminal->program == QLatin1String("xdg-terminal-exec");
    const auto running = firstWindow(windows, [&](const ApplicationWindow& window) {
        if (anyTerminal)
            return std::any_of(entries.begin(), entries.end(), [&](const DesktopEntry& entry) {
                return entry.isTerminal && entry.owns(window.instance, window.className);
            });
        const DesktopEntry bare{terminal->program, {}, {}, {}, true};
        return (terminal->entry ? *terminal->entry : bare).owns(window.instance, window.className);
    });
    if (running) return {running, {}};
    return {0, terminal->command};
}
