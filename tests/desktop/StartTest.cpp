#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <QSocketNotifier>
#include <cstring>

#include "desktop/DesktopTest.h"

using namespace Qt::StringLiterals;

namespace {

TEST(Start, EndsInOrderWithoutADisplay) {
    const Home home;
    for (const char* display : {"", ":987"}) {
        Glimmet glimmet(nullptr, home, {}, {{"DISPLAY", QLatin1String(display)}});
        EXPECT_TRUE(glimmet.ends()) << display;
        EXPECT_EQ(glimmet.errors(), QStringList{u"glimmet: no screen to live on"_s}) << display;
        EXPECT_EQ(glimmet.output(), QStringList()) << display;
    }
}

TEST(Start, RunsOnAPlatformWithoutAWindowSystem) {
    const Home home;
    Glimmet glimmet(nullptr, home, {}, {{"QT_QPA_PLATFORM", u"offscreen"_s}});
    ASSERT_TRUE(glimmet.started());
    EXPECT_EQ(glimmet.errors().last(), u"glimmet: notch=(307.5, 768.0, 185.0, 32.0) top=800.0 toy=Critter"_s);
}

TEST(Start, OutlivesWhoeverReadsWhatItWrites) {
    const Home home;
    auto environment = home.environment();
    environment.insert(u"QT_QPA_PLATFORM"_s, u"offscreen"_s);
    QProcess program;
    program.setProcessEnvironment(environment);
    program.setChildProcessModifier([] {
        int ends[2];
        if (pipe(ends) == 0 && close(ends[0]) == 0) dup2(ends[1], STDOUT_FILENO);
    });
    program.start(besideTheTest("glimmet"), {u"--menudump"_s});
    EXPECT_TRUE(program.waitForFinished(10000));
    EXPECT_EQ(program.exitStatus(), QProcess::NormalExit);
}

class Startup : public DesktopTest {};

TEST_F(Startup, DoesWithoutABusThatSaysNothing) {
    const QByteArray path = home.path("bus");
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    std::copy(path.begin(), path.end(), address.sun_path);
    const int listener = socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
    ASSERT_EQ(bind(listener, reinterpret_cast<const sockaddr*>(&address), sizeof address), 0);
    ASSERT_EQ(listen(listener, 10), 0);
    const char* greeting = "";
    QSocketNotifier arrivals(listener, QSocketNotifier::Read);
    QObject::connect(&arrivals, &QSocketNotifier::activated,
                     [&] { send(accept(listener, nullptr, nullptr), greeting, std::strlen(greeting), MSG_NOSIGNAL); });
    const QString place = QString::fromUtf8("unix:path=" + path);
    // The second lets programs in and answers no call.
    for (const char* words : {"", "OK 0123456789abcdef0123456789abcdef\r\n"}) {
        SCOPED_TRACE(words);
        greeting = words;
        session.moveTo(kFar);
        start({}, {{"DBUS_SESSION_BUS_ADDRESS", place}, {"DBUS_SYSTEM_BUS_ADDRESS", place}});
        EXPECT_TRUE(waitForBody(185, 58));
        session.moveTo(kOnNotch);
        EXPECT_TRUE(waitForBody(214, 108));
        glimmet->terminate();
        EXPECT_TRUE(glimmet->ends());
    }
    close(listener);
}

TEST_F(Startup, SaysWhereItLivesAndHangsThereFromTheTop) {
    const OtherWindow window(session, {.geometry = {300, 400, 300, 200}});
    ASSERT_TRUE(waitFor([&] { return window.active(); }));
    ASSERT_NO_FATAL_FAILURE(start());
    EXPECT_EQ(glimmet->errors(), QStringList{u"glimmet: notch=(663.5, 950.0, 185.0, 32.0) top=982.0 toy=Critter"_s});
    EXPECT_EQ(glimmet->panelFrame(), QRect(576, 0, 360, 230));
    EXPECT_TRUE(waitForBody(185, 58));
    EXPECT_NEAR(bodyIn(picture())->center(), 756, 1);
    EXPECT_TRUE(waitForEyes());
    EXPECT_TRUE(window.active()) << "it takes the focus from nobody";
    glimmet->terminate();
    EXPECT_TRUE(glimmet->ends());
}

TEST_F(Startup, IsOnlyOnceForAUserAndFindsWhatItHeldBeforeItsSuddenEnd) {
    ASSERT_NO_FATAL_FAILURE(start({u"--bites"_s, u"--timer=600"_s}));
    ASSERT_TRUE(home.holds("glimmet.bites", "note") && home.holds("glimmet.timers", "minutes"));
    const QByteArray held = home.preferences();
    for (const auto& [flag, error] :
         {std::pair{"--seed", "glimmet: already running for this user"}, {"--menudump", ""}}) {
        Glimmet second(&session, home, {QLatin1String(flag)});
        EXPECT_TRUE(second.ends()) << flag;
        EXPECT_EQ(second.errors().join(u'\n'), QLatin1String(error));
    }
    glimmet->kill();
    EXPECT_EQ(home.preferences(), held);
    ASSERT_NO_FATAL_FAILURE(start());
    EXPECT_TRUE(waitForBody(236, 74));
}

TEST_F(Startup, PrintsItsMenuAndEnds) {
    home.setPreferences("glimmet.hidden = bool true\n");
    Glimmet menu(&session, home, {u"--menudump"_s, u"--update"_s});
    EXPECT_TRUE(menu.ends());
    EXPECT_EQ(menu.output().join(u'\n'),
              uR"(   Critter
   Weather
—— 
   Hold a timer  ▸3
   Shh for an hour
—— 
   Watch Downloads
   Meeting whispers
   Music in the notch
   Check for updates…
—— 
   Show Glimmet
   Quit Glimmet)"_s);
    EXPECT_EQ(menu.errors("glimmet:"), QStringList()) << "the flags that set states come later";
}

TEST_F(Startup, TestsItsPlacementOnRequest) {
    ASSERT_NO_FATAL_FAILURE(start({u"--screentest"_s}));
    ASSERT_TRUE(waitFor([&] { return glimmet->errors("screentest:").size() == 2; }, 8));
    const QString frame = u"(576.0, 752.0, 360.0, 230.0)"_s;
    EXPECT_EQ(glimmet->errors("screentest:"),
              QStringList({u"screentest: before=%1 after=%1 same=true panel=%1 centerX=756.0 top=982.0"_s.arg(frame),
                           u"screentest: recovered=true panel=%1"_s.arg(frame)}));
}

}  // namespace
