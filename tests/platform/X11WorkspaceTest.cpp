#include "X11Test.h"
#include "platform/linux/x11/X11Workspace.h"
#include "support/Environment.h"
#include "support/MemoryPorts.h"
#include "support/TestFolder.h"

namespace {
class X11Applications : public X11Test {
 protected:
    X11Applications() : workspace(connection, loop, queue) {
        workspace.onApplicationActivated = [this] { ++activations; };
    }
    TestFolder folder;
    InlineQueue queue;
    X11Workspace workspace;
    int activations = 0;
};

TEST_F(X11Applications, ReportsAnotherApplicationButNotAnotherWindow) {
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

TEST_F(X11Applications, ReportsOneThatWasClosedAndOpenedAgain) {
    workspace.start();
    for (int i = 1; i <= 2; ++i) {
        {
            const OtherWindow mail(session(), {.instance = "mail", .className = "Mail"});
            ASSERT_TRUE(waitFor([&] { return activations == i; }));
        }
        letPass(0.4);  // nobody is faster
    }
}

TEST_F(X11Applications, BringsTheNamedApplicationForward) {
    const EnvironmentVariable data("XDG_DATA_HOME", folder.path()), language("LC_ALL", "de_DE.UTF-8");
    folder.write("applications/org.example.Console.desktop",
                 "[Desktop Entry]\nType=Application\nName=Console\nName[de]=Konsole zwei\nExec=true %U\n"
                 "StartupWMClass=consoled-window\n");
    const struct {
        const char *instance, *className, *displayName;
    } cases[] = {
        {"kitty", "kitty", "kitty"},
        {"wez", "org.wezfurlong.wezterm", "WezTerm"},
        {"consoled-window", "Any", "Console"},
        {"consoled-window", "Any", "Konsole zwei"},
    };
    for (const auto& [instance, className, displayName] : cases) {
        OtherWindow wanted(session(), {.instance = instance, .className = className});
        OtherWindow other(session(), {});
        ASSERT_TRUE(waitFor([&] { return other.active(); }));
        workspace.activateOrOpenTerminal(QString::fromLatin1(displayName));
        EXPECT_TRUE(waitFor([&] { return wanted.active(); })) << displayName;
    }
}

TEST_F(X11Applications, StartsTheUsersTerminalUnlessItRuns) {
    folder.write("myterm", "#!/bin/sh\necho \"$1\" > " + folder.path("started") + "\n");
    std::filesystem::permissions(folder.path("myterm").toStdString(), std::filesystem::perms::owner_all);
    const EnvironmentVariable setting("TERMINAL", folder.path("myterm") + " --new");
    {
        OtherWindow running(session(), {.instance = "myterm", .className = "Myterm"});
        OtherWindow other(session(), {});
        ASSERT_TRUE(waitFor([&] { return other.active(); }));
        workspace.activateOrOpenTerminal(QStringLiteral("Absent"));
        EXPECT_TRUE(waitFor([&] { return running.active(); }));
        EXPECT_FALSE(folder.has("started"));
    }
    workspace.activateOrOpenTerminal(QStringLiteral("Absent"));
    EXPECT_TRUE(waitFor([&] { return folder.read("started") == "--new\n"; }));
}
}  // namespace
