#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include "platform/linux/TerminalChoice.h"

namespace {
DesktopEntry entry(const char* id, const char* text) {
    return parseDesktopEntry(QString::fromLatin1(id), QString::fromUtf8(text)).value();
}

TEST(DesktopEntries, ReadWhatAnApplicationIs) {
    const auto parsed = entry("org.example.Term",
                              "# a comment\n[Other]\nName=Wrong\n[Desktop Entry]\r\nType = Application\nName=Term\n"
                              "Name[fr]=Borne\nExec=\"/opt/my term/term\" --title %c %F --done=100%%\n"
                              "StartupWMClass=TermWindow\nCategories=System;TerminalEmulator;\n"
                              "[Desktop Action new]\nName=New window\nExec=other\n");
    EXPECT_EQ(parsed.names, (QStringList{QStringLiteral("Term"), QStringLiteral("Borne")}));
    EXPECT_EQ(parsed.command, (QStringList{QStringLiteral("/opt/my term/term"), QStringLiteral("--title"),
                                           QStringLiteral("--done=100%")}));
    EXPECT_EQ(parsed.program(), QStringLiteral("term"));
    EXPECT_EQ(parsed.windowClass, QStringLiteral("TermWindow"));
    EXPECT_TRUE(parsed.terminal);
}

TEST(DesktopEntries, SkipWhatIsNoApplication) {
    for (const char* text :
         {"", "garbage\n=\n[", "[Desktop Entry]\nType=Link\nName=A\nExec=a\n",
          "[Desktop Entry]\nType=Application\nName=A\n", "[Desktop Entry]\nType=Application\nName=A\nExec=%U\n",
          "[Desktop Entry]\nType=Application\nName=A\nExec=a\nHidden=true\n"})
        EXPECT_FALSE(parseDesktopEntry(QStringLiteral("a"), QString::fromUtf8(text))) << text;
}

TEST(DesktopEntries, KnowTheirWindows) {
    const auto plain = entry("org.gnome.Console", "[Desktop Entry]\nType=Application\nName=C\nExec=/usr/bin/kgx %U\n");
    const auto classed = entry("foo", "[Desktop Entry]\nType=Application\nName=F\nExec=foo\nStartupWMClass=Bar\n");
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

TEST(DesktopEntries, TheUsersHideThoseOfTheSystem) {
    QTemporaryDir user, system;
    const auto write = [](const QTemporaryDir& folder, const char* name, const QByteArray& text) {
        const QString path = folder.path() + QStringLiteral("/applications/") + QString::fromLatin1(name);
        QDir().mkpath(QFileInfo(path).path());
        QFile file(path);
        ASSERT_TRUE(file.open(QFile::WriteOnly));
        file.write("[Desktop Entry]\nType=Application\n" + text);
    };
    write(user, "a.desktop", "Name=Mine\nExec=mine\n");
    write(user, "b.desktop", "Name=Gone\nExec=gone\nHidden=true\n");
    write(system, "a.desktop", "Name=Theirs\nExec=theirs\n");
    write(system, "b.desktop", "Name=B\nExec=b\n");
    write(system, "sub/c.desktop", "Name=C\nExec=c\n");
    QStringList found;
    for (const auto& read : readDesktopEntries({user.path(), system.path(), QStringLiteral("/nonexistent")}))
        found.append(read.id + u' ' + read.names.first());
    EXPECT_EQ(found, (QStringList{QStringLiteral("a Mine"), QStringLiteral("sub-c C")}));
}

TEST(TerminalChoice, PrefersTheNamedApplicationThenTheDefaultTerminal) {
    const QList<DesktopEntry> entries{
        entry("editor", "[Desktop Entry]\nType=Application\nName=Write\nExec=writer\n"),
        entry("absent", "[Desktop Entry]\nType=Application\nName=No\nExec=absent\nCategories=TerminalEmulator;\n"),
        entry("foot", "[Desktop Entry]\nType=Application\nName=Foot\nExec=foot -x\nCategories=TerminalEmulator;\n"),
        entry("gt",
              "[Desktop Entry]\nType=Application\nName=GT\nExec=gt\nStartupWMClass=GtServer\n"
              "Categories=TerminalEmulator;\n"),
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
        const char* command;
    } cases[] = {
        {"class", "Writer", "", {}, windows, 1, ""},
        {"entry's name", "Write", "", {}, windows, 1, ""},
        {"name of elsewhere", "Visual Studio Code", "", {}, windows, 5, ""},
        {"case matters", "WRITE", "", {}, windows, 0, ""},
        {"running default", "X", "foot", {QStringLiteral("foot")}, windows, 2, ""},
        {"default with its own class",
         "X",
         "",
         {QStringLiteral("x-terminal-emulator>/usr/bin/gt.wrapper")},
         windows,
         3,
         ""},
        {"default without entry", "X", "code", {QStringLiteral("code")}, windows, 5, ""},
        {"chooser, any terminal", "X", "", {QStringLiteral("xdg-terminal-exec")}, windows, 2, ""},
        {"setting that is not installed",
         "X",
         "no",
         {QStringLiteral("x-terminal-emulator>/b/gt")},
         {},
         0,
         "x-terminal-emulator"},
        {"setting with options", "X", "foot --login", {QStringLiteral("foot")}, {}, 0, "foot --login"},
        {"first installed entry", "X", "", {QStringLiteral("foot"), QStringLiteral("gt")}, {}, 0, "foot -x"},
        {"nothing", "X", "", {}, {}, 0, ""},
    };
    for (const auto& test : cases) {
        const auto find = [&](const QString& program) {
            for (const QString& installed : test.installed) {
                if (installed.section(u'>', 0, 0) == program)
                    return installed.contains(u'>') ? installed.section(u'>', 1)
                                                    : QStringLiteral("/usr/bin/") + program;
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
