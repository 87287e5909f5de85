#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>

#include "TestBus.h"
#include "TestPrograms.h"
#include "platform/FileUrls.h"
#include "platform/linux/ThreadQueues.h"
#include "platform/linux/freedesktop/Openers.h"
#include "support/MemoryPorts.h"

namespace {

class Openers : public testing::Test {
 protected:
    TestPrograms programs;
    ThreadQueue queue;
};

TEST_F(Openers, PassTheUrlEncoded) {
    programs.install("gio");
    openUrl(queue, QUrl(QStringLiteral("https://a.example/")));
    EXPECT_TRUE(programs.tells("gio", {"open", "https://a.example/"})) << "where there is nothing better";
    programs.install("xdg-open");
    for (const auto& [url, address] :
         {std::pair(QUrl(QStringLiteral("https://b\u00fccher.example/\u00fc?c=d&e=%20f#g")),
                    "https://xn--bcher-kva.example/%C3%BC?c=d&e=%20f#g"),
          {fileUrl("/tmp/two words\n50%caf\xe9'$(x)"), "file:///tmp/two%20words%0A50%25caf%E9%27%24%28x%29"}}) {
        openUrl(queue, url);
        EXPECT_TRUE(programs.tells("xdg-open", {address}));
    }
    HeldQueue held;
    for (const char* odd : {"", "--help", "//a.example/", "-x:y", "http://a:b:c/"}) {
        openUrl(held, QUrl(QLatin1String(odd)));
        EXPECT_TRUE(held.jobs.empty()) << odd;
    }
}

TEST_F(Openers, WaitForNothingAndGiveAwayNothing) {
    HeldQueue held;
    const QUrl url(QStringLiteral("https://a.example/"));
    openUrl(held, url);
    held.runAll();  // there is no opener at all

    const int ours = open("/dev/null", O_RDONLY);  // inherited by careless starters
    const auto before = signal(SIGUSR1, SIG_IGN);
    programs.install("xdg-open", QByteArray(R"(cd "${0%/*}"
while [ ! -e go ]; do /bin/sleep 0.01; done
echo $PPID > parent
/bin/ls -l /proc/$$/fd > descriptors
/bin/grep SigIgn /proc/self/status > signals)"));
    openUrl(held, url);
    held.runAll();
    EXPECT_TRUE(programs.told("xdg-open").isEmpty()) << "it has begun, and waits for what comes next";
    programs.write("go", {});
    ASSERT_TRUE(programs.tells("xdg-open", {"https://a.example/"}));
    EXPECT_GT(programs.read("parent").toInt(), 0);
    EXPECT_NE(programs.read("parent").toInt(), getpid());
    siginfo_t ended{};
    waitid(P_ALL, 0, &ended, WEXITED | WNOHANG | WNOWAIT);
    EXPECT_EQ(ended.si_pid, 0) << "nobody waits to be buried";
    const QByteArray descriptors = programs.read("descriptors");
    EXPECT_TRUE(descriptors.count("/dev/null") == 3 && !descriptors.contains(" " + QByteArray::number(ours) + " -> "))
        << descriptors.constData();
    EXPECT_EQ(programs.read("signals"), "SigIgn:\t0000000000000000\n");
    signal(SIGUSR1, before);
    close(ours);
}

TEST_F(Openers, RevealInTheFileManagerElseOpenTheFolder) {
    programs.install("xdg-open");
    std::optional<TestBus> bus;
    std::optional<TestService> manager;
    const EnvironmentVariable none("DBUS_SESSION_BUS_ADDRESS", TestBus::address());
    const auto opensTheFolder = [&](const QUrl& file = fileUrl("/tmp/a b/caf\xe9")) {
        revealFile(queue, file);
        return programs.tells("xdg-open", {"file:///tmp/a%20b/"});
    };
    EXPECT_TRUE(opensTheFolder()) << "no bus";
    bus.emplace();
    EXPECT_TRUE(opensTheFolder()) << "no file manager";
    manager.emplace(QStringLiteral("org.freedesktop.FileManager1"));
    revealFile(queue, fileUrl("/tmp/a b/caf\xe9"));
    ASSERT_TRUE(waitFor([&] { return !manager->calls.isEmpty(); }));
    const QDBusMessage& call = manager->calls.first();
    EXPECT_EQ(call.path(), QStringLiteral("/org/freedesktop/FileManager1"));
    EXPECT_EQ(call.interface() + u'.' + call.member(), QStringLiteral("org.freedesktop.FileManager1.ShowItems"));
    EXPECT_EQ(call.signature(), QStringLiteral("ass"));
    EXPECT_EQ(call.arguments(), (QVariantList{QStringList{QStringLiteral("file:///tmp/a%20b/caf%E9")}, QString()}));
    manager->answer = [](const QDBusMessage& message) { return message.createErrorReply(QDBusError::Failed, {}); };
    EXPECT_TRUE(opensTheFolder(fileUrl("/tmp/a b/folder/"))) << "it cannot";
    EXPECT_EQ(manager->calls.last().arguments().first(), QStringList{QStringLiteral("file:///tmp/a%20b/folder")});
    manager->answer = [](const QDBusMessage&) { return QDBusMessage(); };
    EXPECT_TRUE(opensTheFolder()) << "it hangs";
}

}  // namespace
