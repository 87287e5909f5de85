#include "platform/linux/freedesktop/TerminalChoice.h"

using namespace Qt::StringLiterals;

namespace {
QStringList words(const char* text) {
    return QString::fromLatin1(text).split(u' ', Qt::SkipEmptyParts);
}
DesktopEntry entry(const char* id, const char* name, const char* command, const char* windowClass = "",
                   bool terminal = false) {
    return {QString::fromLatin1(id), words(name), words(command), QString::fromLatin1(windowClass), terminal};
}

TEST(DesktopEntries, KnowTheirWindows) {
    const auto plain = entry("org.gnome.Console", "C", "/usr/bin/kgx");
    const auto classed = entry("foo", "F", "foo", "Bar");
    const struct {
        const DesktopEntry& entry;
        const char *instance, *className;
        bool owned;
    } cases[] = {
        {plain, "kgx", "Kgx", true},    {plain, "x", "org.gnome.Console", true}, {plain, "console", "", true},
        {plain, "", "", false},         {plain, "gnome", "org.gnome", false},    {classed, "bar", "Other", true},
        {classed, "foo", "Foo", false},
    };
    for (const auto& [which, instance, className, owned] : cases)
        EXPECT_EQ(which.owns(QString::fromLatin1(instance), QString::fromLatin1(className)), owned)
            << instance << ' ' << className;
}

TEST(TerminalChoice, PrefersTheNamedApplicationThenTheDefaultTerminal) {
    const QList<DesktopEntry> entries{
        entry("editor", "Write Schreiben", "writer"),
        entry("absent", "No", "absent", "", true),
        entry("foot", "Foot", "foot -x", "", true),
        entry("gt", "GT", "gt", "GtServer", true),
    };
    const auto window = [](quint32 id, const char* instance, const char* className) {
        return ApplicationWindow{id, QString::fromLatin1(instance), QString::fromLatin1(className)};
    };
    const QList<ApplicationWindow> windows{window(1, "writer", "Writer"), window(2, "foot", "foot"),
                                           window(3, "gtserver", "GtServer"), window(4, "foot", "foot"),
                                           window(5, "code", "Code")};
    const struct {
        const char *name, *displayName, *environment;
        QStringList installed;  // "name" or "name>what it links to"
        QList<ApplicationWindow> open;
        quint32 window;
        const char* command = "";
    } cases[] = {
        {"class", "Writer", "", {}, windows, 1},
        {"entry's name", "Write", "", {}, windows, 1},
        {"entry's other name", "Schreiben", "", {}, windows, 1},
        {"name of elsewhere", "Visual Studio Code", "", {}, windows, 5},
        {"case matters", "WRITE", "", {}, windows, 0},
        {"running default", "X", "foot", {u"foot"_s}, windows, 2},
        {"default with its own class", "X", "", {u"x-terminal-emulator>/usr/bin/gt.wrapper"_s}, windows, 3},
        {"default without entry", "X", "code", {u"code"_s}, windows, 5},
        {"chooser, any terminal", "X", "", {u"xdg-terminal-exec"_s}, windows, 2},
        {"setting not installed", "X", "no", {u"x-terminal-emulator>/b/gt"_s}, {}, 0, "x-terminal-emulator"},
        {"setting with options", "X", "foot --login", {u"foot"_s}, {}, 0, "foot --login"},
        {"first installed entry", "X", "", {u"foot"_s, u"gt"_s}, {}, 0, "foot -x"},
        {"nothing", "X", "", {}, {}, 0},
    };
    for (const auto& test : cases) {
        const auto find = [&](const QString& program) {
            for (const QString& installed : test.installed) {
                const bool linked = installed.contains(u'>');
                if (installed.section(u'>', 0, 0) == program)
                    return linked ? installed.section(u'>', 1) : u"/usr/bin/"_s + program;
            }
            return QString();
        };
        const auto choice = chooseApplicationOrTerminal(QString::fromLatin1(test.displayName), test.open, entries,
                                                        QString::fromLatin1(test.environment), find);
        EXPECT_EQ(choice.window, test.window) << test.name;
        EXPECT_EQ(choice.command.join(u' '), QString::fromLatin1(test.command)) << test.name;
    }
}
}  // namespace
