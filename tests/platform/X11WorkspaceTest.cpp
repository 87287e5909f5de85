#include "TestPrograms.h"
#include "X11Test.h"
#include "platform/linux/freedesktop/TerminalChoice.h"
#include "platform/linux/x11/X11Workspace.h"
#include "support/MemoryPorts.h"

using namespace Qt::StringLiterals;

namespace {
class X11Applications : public X11Test {
 protected:
    X11Applications() : workspace(connection, loop, queue) {
        workspace.onApplicationActivated = [this] { ++activations; };
    }
    TestPrograms programs;
    InlineQueue queue;
    X11Workspace workspace;
    int activations = 0;
};

TEST_F(X11Applications, ReportsAnotherApplicationButNotAnotherWindow) {
    {
        OtherWindow mail(session(), {.instance = "mail", .className = "Mail"});
        ASSERT_TRUE(waitFor([&] { return mail.active(); }));
        workspace.start();
        letPass(0.2);
        EXPECT_EQ(activations, 0) << "what is active at the start is no news";
        const xcb_window_t second = mail.openSecond();
        ASSERT_TRUE(waitFor([&] { return session().activeWindow() == second; }));
        letPass(0.2);
        EXPECT_EQ(activations, 0);
        {
            OtherWindow editor(session(), {.instance = "editor", .className = "Editor"});
            ASSERT_TRUE(waitFor([&] { return editor.active() && activations == 1; }));
        }
        // The manager hands the focus back to a mail window, perhaps by way of none.
        EXPECT_TRUE(waitFor([&] { return activations == 2; }));
        mail.activate();
        ASSERT_TRUE(waitFor([&] { return mail.active(); }));
        letPass(0.2);
        EXPECT_EQ(activations, 2);
    }
    letPass(0.4);  // nobody is faster
    const OtherWindow again(session(), {.instance = "mail", .className = "Mail"});
    EXPECT_TRUE(waitFor([&] { return activations == 3; })) << "one that was closed and opened again";
}

TEST_F(X11Applications, BringsTheNamedOneForwardElseTheTerminalThatItStartsUnlessItRuns) {
    const EnvironmentVariable data("XDG_DATA_HOME", programs.path()), language("LC_ALL", "de_DE.UTF-8"),
        setting("TERMINAL", "myterm --new");
    programs.install("myterm");
    programs.write("applications/org.example.Console.desktop", R"([Desktop Entry]
Type=Application
Name=Console
Name[de]=Konsole zwei
Exec=/bin/true %U
StartupWMClass=consoled-window
)");
    const struct {
        const char *instance, *className, *displayName;
    } cases[] = {
        {"kitty", "kitty", "kitty"},           {"wez", "org.wezfurlong.wezterm", "WezTerm"},
        {"consoled-window", "Any", "Console"}, {"consoled-window", "Any", "Konsole zwei"},
        {"myterm", "Myterm", "Absent"},
    };
    for (const auto& [instance, className, displayName] : cases) {
        OtherWindow wanted(session(), {.instance = instance, .className = className});
        OtherWindow other(session(), {});
        ASSERT_TRUE(waitFor([&] { return other.active(); }));
        workspace.activateOrOpenTerminal(QString::fromLatin1(displayName));
        EXPECT_TRUE(waitFor([&] { return wanted.active(); })) << displayName;
    }
    EXPECT_FALSE(programs.has("myterm.told"));
    workspace.activateOrOpenTerminal(QStringLiteral("Absent"));
    EXPECT_TRUE(programs.tells("myterm", {"--new"}));
}

DesktopEntry entry(const char* id, const char* name, const char* command, const char* windowClass = "",
                   bool terminal = false) {
    const auto words = [](const char* text) { return QString::fromLatin1(text).split(u' ', Qt::SkipEmptyParts); };
    return {QString::fromLatin1(id), words(name), words(command), QString::fromLatin1(windowClass), terminal};
}

TEST(TerminalChoice, PrefersWhatIsNamedThenTheDefaultTerminal) {
    const QList<DesktopEntry> entries{
        entry("org.x.Edit", "Edit", "/usr/bin/writer"), entry("gt", "GT", "gt", "GtServer", true),
        entry("absent", "No", "absent", "", true), entry("foot", "Foot", "foot -x", "", true)};
    const struct {
        const char *name, *displayName, *environment;
        const char *installed, *target;  // a program, and what it links to
        const char* open;                // the windows' instances; their classes are "c"
        quint32 window;
        const char* command = "";
    } cases[] = {
        {"by its program", "Edit", "", "", "", "c Writer", 2},
        {"by its id", "Edit", "", "", "", "x org.x.edit", 2},
        {"by the end of its id", "Edit", "", "", "", "x.Edit EDIT", 2},
        {"by nothing else", "Edit", "", "", "", " x org.x", 0},
        {"has a class of its own", "GT", "", "", "", "gt gtserver", 2},
        {"case matters", "EDIT", "", "", "", "writer", 0},
        {"default with its own class", "X", "", "x-terminal-emulator", "gt.wrapper", "gt GtServer", 2},
        {"default without entry", "X", "code", "code", "code", "foot code", 2},
        {"any terminal", "X", "", "xdg-terminal-exec", "xdg-terminal-exec", "writer foot gtserver", 2},
        {"no such setting", "X", "no", "x-terminal-emulator", "gt", "", 0, "x-terminal-emulator"},
        {"first installed entry", "X", "", "foot", "foot", "", 0, "foot -x"},
        {"nothing", "X", "", "", "", "", 0},
    };
    for (const auto& test : cases) {
        QList<ApplicationWindow> windows;
        for (const QString& name : QString::fromLatin1(test.open).split(u' '))
            windows.append({quint32(windows.size() + 1), name, u"c"_s});
        const auto find = [&](const QString& program) {
            return program == QLatin1String(test.installed) ? u"/usr/bin/"_s + QLatin1String(test.target) : QString();
        };
        const auto choice = chooseApplicationOrTerminal(QString::fromLatin1(test.displayName), windows, entries,
                                                        QString::fromLatin1(test.environment), find);
        EXPECT_EQ(choice.window, test.window) << test.name;
        EXPECT_EQ(choice.command.join(u' '), QString::fromLatin1(test.command)) << test.name;
    }
}
}  // namespace
