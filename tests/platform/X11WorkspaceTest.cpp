#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include "X11Test.h"
#include "platform/linux/x11/X11Workspace.h"
#include "support/Environment.h"

namespace {
class ImmediateQueue : public BackgroundQueue {
 public:
    void run(std::function<void()> job) override { job(); }
};

class X11Applications : public X11Test {
 protected:
    X11Applications() : workspace(connection, loop, queue) {
        workspace.onApplicationActivated = [this] { ++activations; };
    }
    void write(const QString& name, const QByteArray& text) {
        const QString path = folder.filePath(name);
        QDir().mkpath(QFileInfo(path).path());
        QFile file(path);
        ASSERT_TRUE(file.open(QFile::WriteOnly));
        file.write(text);
        file.setPermissions(file.permissions() | QFile::ExeOwner);
    }

    QTemporaryDir folder;
    ImmediateQueue queue;
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
    const EnvironmentVariable data("XDG_DATA_HOME", folder.path().toUtf8()), language("LC_ALL", "de_DE.UTF-8");
    write(QStringLiteral("applications/org.example.Console.desktop"),
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
    const QString started = folder.filePath(QStringLiteral("started"));
    write(QStringLiteral("myterm"), "#!/bin/sh\necho \"$1\" > " + started.toUtf8() + "\n");
    qputenv("TERMINAL", folder.filePath(QStringLiteral("myterm")).toUtf8() + " --new");
    {
        OtherWindow running(session(), {.instance = "myterm", .className = "Myterm"});
        OtherWindow other(session(), {});
        ASSERT_TRUE(waitFor([&] { return other.active(); }));
        workspace.activateOrOpenTerminal(QStringLiteral("Absent"));
        EXPECT_TRUE(waitFor([&] { return running.active(); }));
        EXPECT_FALSE(QFile::exists(started));
    }
    workspace.activateOrOpenTerminal(QStringLiteral("Absent"));
    EXPECT_TRUE(waitFor([&] {
        QFile file(started);
        return file.open(QFile::ReadOnly) && file.readAll() == "--new\n";
    }));
    qunsetenv("TERMINAL");
}
}  // namespace
