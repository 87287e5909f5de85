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
    const struct {
        QUrl url;
        const char* address;
    } cases[] = {
        {QUrl(QStringLiteral("https://a.example/b?c=d&e=%20f#g")), "https://a.example/b?c=d&e=%20f#g"},
        {QUrl(QStringLiteral("mailto:a@a.example")), "mailto:a@a.example"},
        {QUrl(QStringLiteral("https://b\u00fccher.example/\u00fc")), "https://xn--bcher-kva.example/%C3%BC"},
        {fileUrl("/tmp/two words\n50%caf\xe9'$(x)"), "file:///tmp/two%20words%0A50%25caf%E9%27%24%28x%29"},
        {fileUrl("/-rf"), "file:///-rf"},
    };
    for (const auto& [url, address] : cases) {
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
    programs.install("xdg-open", "while [ ! -e " + programs.path("go") + " ]; do /bin/sleep 0.01; done; echo $PPID > " +
                                     programs.path("parent") + "; /bin/ls -l /proc/$$/fd > " +
                                     programs.path("descriptors") + "; /bin/grep SigIgn /proc/self/status > " +
                                     programs.path("signals"));
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
    EXPECT_EQ(descriptors.count("/dev/null"), 3) << descriptors.constData();
    EXPECT_FALSE(descriptors.contains(" " + QByteArray::number(ours) + " -> ")) << descriptors.constData();
    EXPECT_EQ(programs.read("signals"), "SigIgn:\t0000000000000000\n");
    signal(SIGUSR1, before);
    close(ours);
}

TEST_F(Openers, RevealInTheFileManagerElseOpenTheFolder) {
    programs.install("xdg-open");
    const QUrl file = fileUrl("/tmp/a b/caf\xe9");
    const QByteArrayList folder{"file:///tmp/a%20b/"};
    {
        const EnvironmentVariable none("DBUS_SESSION_BUS_ADDRESS", TestBus::address());
        revealFile(queue, file);
        EXPECT_TRUE(programs.tells("xdg-open", folder)) << "no bus";
    }
    const TestBus bus;
    revealFile(queue, file);
    EXPECT_TRUE(programs.tells("xdg-open", folder)) << "no file manager";

    TestService manager(QStringLiteral("org.freedesktop.FileManager1"));
    revealFile(queue, file);
    ASSERT_TRUE(waitFor([&] { return !manager.calls.isEmpty(); }));
    const QDBusMessage& call = manager.calls.first();
    EXPECT_EQ(call.path(), QStringLiteral("/org/freedesktop/FileManager1"));
    EXPECT_EQ(call.interface() + u'.' + call.member(), QStringLiteral("org.freedesktop.FileManager1.ShowItems"));
    EXPECT_EQ(call.signature(), QStringLiteral("ass"));
    EXPECT_EQ(call.arguments(), (QVariantList{QStringList{QStringLiteral("file:///tmp/a%20b/caf%E9")}, QString()}));

    manager.answer = [](const QDBusMessage& message) { return message.createErrorReply(QDBusError::Failed, {}); };
    revealFile(queue, fileUrl("/tmp/folder/"));
    EXPECT_TRUE(programs.tells("xdg-open", {"file:///tmp/"})) << "it cannot";
    EXPECT_EQ(manager.calls.last().arguments().first(), QStringList{QStringLiteral("file:///tmp/folder")});
    manager.answer = [](const QDBusMessage&) { return QDBusMessage(); };
    revealFile(queue, file);
    EXPECT_TRUE(programs.tells("xdg-open", folder)) << "it hangs";
}

}  // namespace
