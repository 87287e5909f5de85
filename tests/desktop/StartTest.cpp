#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <QStringList>
#include <atomic>
#include <cstring>
#include <thread>

#include "desktop/DesktopTest.h"

using namespace Qt::StringLiterals;

TEST(Start, EndsInOrderWithoutADisplay) {
    const Home home;
    for (const char* display : {"", ":987"}) {
        auto environment = home.environment();
        environment.insert(QStringLiteral("DISPLAY"), QLatin1String(display));
        Glimmet glimmet(environment, home);
        ASSERT_TRUE(waitFor([&] { return !glimmet.running(); })) << display;
        EXPECT_EQ(glimmet.exitCode(), 0) << display;
        EXPECT_EQ(glimmet.errors(), QStringList{QStringLiteral("glimmet: no screen to live on")}) << display;
        EXPECT_EQ(glimmet.output(), QStringList()) << display;
    }
}

TEST(Start, RunsOnAPlatformWithoutAWindowSystem) {
    const Home home;
    auto environment = home.environment();
    environment.insert(QStringLiteral("QT_QPA_PLATFORM"), QStringLiteral("offscreen"));
    Glimmet glimmet(environment, home);
    ASSERT_TRUE(glimmet.started());
    EXPECT_EQ(glimmet.errors().last(),
              QStringLiteral("glimmet: notch=(307.5, 768.0, 185.0, 32.0) top=800.0 toy=Critter"));
}

TEST(Start, OutlivesWhoeverReadsWhatItWrites) {
    const Home home;
    auto environment = home.environment();
    environment.insert(QStringLiteral("QT_QPA_PLATFORM"), QStringLiteral("offscreen"));
    int ends[2];
    ASSERT_EQ(pipe(ends), 0);
    close(ends[0]);
    QProcess program;
    program.setProcessEnvironment(environment);
    program.setChildProcessModifier([&] { dup2(ends[1], STDOUT_FILENO); });
    program.start(QStringLiteral(GLIMMET_PROGRAM), {QStringLiteral("--menudump")});
    EXPECT_TRUE(program.waitForFinished(10000));
    EXPECT_EQ(program.exitStatus(), QProcess::NormalExit);
    close(ends[1]);
}

class Startup : public DesktopTest {};

TEST_F(Startup, DoesWithoutABusThatSaysNothing) {
    const QByteArray path = home.filePath(QStringLiteral("bus")).toUtf8();
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    std::copy(path.begin(), path.end(), address.sun_path);
    const int listener = socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
    ASSERT_EQ(bind(listener, reinterpret_cast<const sockaddr*>(&address), sizeof address), 0);
    ASSERT_EQ(listen(listener, 10), 0);
    std::atomic<const char*> greeting = "";
    std::thread bus([&] {
        for (int program; (program = accept(listener, nullptr, nullptr)) >= 0;)
            send(program, greeting, std::strlen(greeting), MSG_NOSIGNAL);
    });
    auto environment = home.environment();
    for (const char* variable : {"DBUS_SESSION_BUS_ADDRESS", "DBUS_SYSTEM_BUS_ADDRESS"})
        environment.insert(QLatin1String(variable), QString::fromUtf8("unix:path=" + path));
    // The second lets programs in and answers no call.
    for (const char* words : {"", "OK 0123456789abcdef0123456789abcdef\r\n"}) {
        greeting = words;
        session.moveTo(kFar);
        Glimmet glimmet(session, environment, home, {});
        EXPECT_TRUE(glimmet.started());
        EXPECT_TRUE(waitForBody(185, 58));
        session.moveTo(kOnNotch);
        EXPECT_TRUE(waitForBody(214, 108)) << words;
        glimmet.terminate();
        EXPECT_TRUE(waitFor([&] { return glimmet.exitCode() == 0; })) << words;
    }
    shutdown(listener, SHUT_RDWR);
    bus.join();
    close(listener);
}

TEST_F(Startup, SaysWhereItLivesAndHangsThereFromTheTop) {
    const OtherWindow window(session, {.geometry = {300, 400, 300, 200}});
    ASSERT_TRUE(waitFor([&] { return window.active(); }));
    Glimmet glimmet(session, home);
    ASSERT_TRUE(glimmet.started());
    EXPECT_EQ(glimmet.errors(),
              QStringList{QStringLiteral("glimmet: notch=(663.5, 950.0, 185.0, 32.0) top=982.0 toy=Critter")});
    EXPECT_EQ(glimmet.panelFrame(), QRect(576, 0, 360, 230));
    EXPECT_TRUE(waitForBody(185, 58));
    EXPECT_NEAR(bodyIn(picture())->center(), 756, 1);
    EXPECT_TRUE(waitForEyes());
    EXPECT_TRUE(window.active()) << "it takes the focus from nobody";

    glimmet.terminate();
    ASSERT_TRUE(waitFor([&] { return !glimmet.running(); }));
    EXPECT_EQ(glimmet.exitCode(), 0);
}

TEST_F(Startup, PrintsItsMenuAndEnds) {
    home.setPreferences("glimmet.hidden = bool true\n");
    Glimmet glimmet(session, home, {QStringLiteral("--menudump"), QStringLiteral("--update")});
    ASSERT_TRUE(waitFor([&] { return !glimmet.running(); }));
    EXPECT_EQ(glimmet.exitCode(), 0);
    const QStringList menu{u"   Critter"_s,
                           u"   Weather"_s,
                           u"—— "_s,
                           u"   Hold a timer  ▸3"_s,
                           u"   Shh for an hour"_s,
                           u"—— "_s,
                           u"   Watch Downloads"_s,
                           u"   Meeting whispers"_s,
                           u"   Music in the notch"_s,
                           u"   Check for updates…"_s,
                           u"—— "_s,
                           u"   Show Glimmet"_s,
                           u"   Quit Glimmet"_s};
    EXPECT_EQ(glimmet.output(), menu) << glimmet.output().join(u'\n').toStdString();
    EXPECT_EQ(glimmet.errors("glimmet:"), QStringList()) << "the flags that set states come later";
}

TEST_F(Startup, TestsItsPlacementOnRequest) {
    Glimmet glimmet(session, home, {QStringLiteral("--screentest")});
    ASSERT_TRUE(glimmet.started());
    ASSERT_TRUE(waitFor([&] { return glimmet.errors("screentest:").size() == 2; }, 8));
    const QString frame = QStringLiteral("(576.0, 752.0, 360.0, 230.0)");
    EXPECT_EQ(
        glimmet.errors("screentest:"),
        QStringList(
            {QStringLiteral("screentest: before=%1 after=%1 same=true panel=%1 centerX=756.0 top=982.0").arg(frame),
             QStringLiteral("screentest: recovered=true panel=%1").arg(frame)}));
    EXPECT_EQ(glimmet.panelFrame(), QRect(576, 0, 360, 230));
}
