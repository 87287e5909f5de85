#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <QFile>
#include <QTemporaryDir>

#include "support/Creature.h"
#include "watchers/AgentWatcher.h"
#include "watchers/CapsLock.h"

namespace {

struct AgentFixture : CreatureFixture {
    QTemporaryDir folder;
    InlineQueue disk;
    MemoryWorkspace workspace;
    AgentWatcher watcher{m, loop, disk, workspace, folder.path()};

    QByteArray path(const char* name) const { return QFile::encodeName(folder.filePath(QLatin1String(name))); }

    void write(const char* name, const QByteArray& content) {
        QFile file(QFile::decodeName(path(name)));
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(content);
    }
    void agent(const char* name, const char* project, const char* terminal = "Terminal") {
        write(name, QByteArray("1\n2\n3\n") + project + "\n" + terminal + "\n");
    }
    void scan() {
        watcher.scanAgents();
        loop.drain();
    }
};

TEST(Agents, AreWhatTheirFilesSay) {
    const QByteArray web = "1\n2\n3\nweb\nTerminal\n";
    const QByteArray api = "1\n2\n3\napi\nKonsole";
    const QByteArray unnamed = "1\n2\n3\n\nTerminal";
    const QByteArray four = "1\n2\n3\nweb";
    const QByteArray kilobyte(1024, 'x');
    const QByteArray project = "1\n2\n3\n";
    struct Case {
        std::vector<std::pair<const char*, QByteArray>> files;
        int working;
        const char* projects;
        bool needs = false;
        const char* terminal = nullptr;
    };
    const std::vector<Case> cases = {
        {{}, 0, ""},
        {{{"a", web}, {"a.flag", "waiting for input"}}, 0, ""},
        {{{"a", web}, {"a.flag", "alerted"}}, 0, "", true, "Terminal"},
        {{{"a", web}, {"a.flag", "Alert"}}, 1, "web"},
        {{{"a", web}, {"a.flag", " wait"}}, 1, "web"},
        {{{"a", web}, {"a.flag", "alert \xff"}}, 1, "web"},
        {{{"c", project + "c"}, {"d", project + "d"}, {"e", project + "e"}, {"f", project + "f"}}, 4, "c · d · e"},
        {{{"Zoo", project + "Zoo"}, {"a", web}, {"b", unnamed}, {"c", web}}, 4, "Zoo · web"},
        {{{".a", web}, {"a.txt", web}, {".ask", ""}}, 0, ""},
        {{{"a", four}, {"a.flag", "alert"}}, 0, "", true},
        {{{"a", four}, {"a.flag", "alert"}, {"b", api}, {"b.flag", "alert"}, {"c", web}, {"c.flag", "alert"}},
         0,
         "",
         true,
         "Konsole"},
        {{{"a", four}, {"a.flag", "alert"}, {"b", api}, {"b.ask", ""}}, 1, "api", true, "Konsole"},
        {{{"a", api}, {"a.ask", ""}, {"b", web}, {"b.flag", "alert"}}, 1, "api", true, "Terminal"},
        {{{".b", api}, {".b.ask", ""}}, 0, "", true, "Konsole"},
        {{{"c.ask", ""}}, 0, "", true},
        {{{"a", "1\n2\n3\n\xe4\xf6\n"}}, 1, ""},
        // Only the beginning is read, and a character that it ends in does not spoil it.
        {{{"a", web + kilobyte.repeated(8).chopped(web.size() + 1) + "ä and more"}}, 1, "web"},
        {{{"a", "1\n2\n" + kilobyte.repeated(9) + "\nweb\nTerminal"}, {"a.flag", "alert"}}, 0, "", true},
    };
    for (size_t i = 0; i < cases.size(); ++i) {
        AgentFixture f;
        for (const auto& [name, content] : cases[i].files) f.write(name, content);
        f.scan();
        EXPECT_EQ(f.m.agentsWorking, cases[i].working) << i;
        EXPECT_EQ(f.m.agentProjects.get(), QString::fromUtf8(cases[i].projects)) << i;
        EXPECT_EQ(f.m.needsYou, cases[i].needs) << i;
        EXPECT_EQ(f.m.blockedTerminal.has_value(), cases[i].terminal != nullptr) << i;
        EXPECT_EQ(f.m.blockedTerminal.value_or(QString()), QString::fromUtf8(cases[i].terminal)) << i;
    }
}

TEST(Agents, TheOneThatNeedsTheUserIsBroughtForwardWhileItDoes) {
    AgentFixture f;
    f.agent("a", "x", "Konsole");
    f.write("a.flag", "alert");
    f.scan();
    f.watcher.focusBlockedTerminal();
    ASSERT_TRUE(f.folder.remove());
    f.scan();
    EXPECT_FALSE(f.m.needsYou);
    f.watcher.focusBlockedTerminal();
    EXPECT_EQ(f.workspace.activated, QStringList{QStringLiteral("Konsole")});
}

TEST(Agents, OnlyWhatChangedIsWrittenAndEachInItsOwnWay) {
    AgentFixture f;
    std::vector<std::optional<Animation>> changes;
    const auto seen = f.m.objectDidChange.subscribe([&](const auto& how) { changes.push_back(how); });
    const auto scan = [&] {
        changes.clear();
        f.scan();
        return changes;
    };
    using Changes = decltype(changes);
    EXPECT_EQ(scan(), Changes());
    f.agent("a", "");
    EXPECT_EQ(scan(), (Changes{std::nullopt, Animation::spring(0.4, 0.7)})) << "a spawn, then the number";
    f.agent("a", "web");
    EXPECT_EQ(scan(), Changes{std::nullopt}) << "the projects";
    EXPECT_EQ(scan(), Changes());
    f.write("a.ask", "");
    EXPECT_EQ(scan(), (Changes{Animation::easeInOut(0.4), std::nullopt})) << "the need, then a spawn";
}

TEST(Agents, ANewOneIsNoticedButNotAtTheFirstLook) {
    AgentFixture f;
    f.agent("a", "x");
    f.watcher.start();
    f.loop.advance(2.4);
    EXPECT_EQ(f.m.agentsWorking, 0);
    f.loop.advance(0.2);
    EXPECT_EQ(f.m.agentsWorking, 1);
    EXPECT_EQ(f.m.spawnCount, 0);
    f.agent("b", "x");
    f.loop.advance(5);
    EXPECT_EQ(f.m.spawnCount, 1);
    f.m.toy = Toy::weather;
    f.agent("c", "x");
    f.loop.advance(2.5);
    EXPECT_EQ(f.m.spawnCount, 1);
    f.write("c.flag", "alert");
    f.loop.advance(2.5);
    EXPECT_EQ(f.m.spawnCount, 2);
    ASSERT_EQ(unlink(f.path("c.flag").constData()) + unlink(f.path("c").constData()), 0);
    f.loop.advance(2.5);
    EXPECT_EQ(f.m.spawnCount, 2);
    f.m.toy = Toy::critter;
    f.agent("c", "x");
    f.loop.advance(2.5);
    EXPECT_EQ(f.m.spawnCount, 3) << "more than at the scan before, though not more than ever";
}

// Anybody may make the directory first, or put something into one that was left open.
TEST(Agents, OnlyTheUsersOwnFilesCount) {
    AgentFixture f;
    f.agent("good", "web");
    f.agent("target", "web");
    ASSERT_EQ(symlink("good", f.path("link").constData()), 0);
    ASSERT_EQ(mkdir(f.path("folder").constData(), 0700), 0);
    for (const char* name : {"fifo", "good.flag", "good.ask"}) ASSERT_EQ(mkfifo(f.path(name).constData(), 0600), 0);
    f.scan();
    EXPECT_EQ(f.m.agentsWorking, 2);
    EXPECT_FALSE(f.m.needsYou);

    const QByteArray link = f.path("link to the directory");
    ASSERT_EQ(symlink(QFile::encodeName(f.folder.path()).constData(), link.constData()), 0);
    AgentWatcher astray(f.m, f.loop, f.disk, f.workspace, QFile::decodeName(link));
    astray.scanAgents();
    f.loop.drain();
    EXPECT_EQ(f.m.agentsWorking, 0);

    if (geteuid() != 0) GTEST_SKIP() << "only root can give files to others";
    const uid_t nobody = 65534;
    f.agent("foreign", "evil");
    f.write("foreign.flag", "alert");
    f.write("good.txt.ask", "");
    for (const char* name : {"foreign", "foreign.flag", "good.txt.ask"})
        ASSERT_EQ(chown(f.path(name).constData(), nobody, nobody), 0);
    f.scan();
    EXPECT_EQ(f.m.agentsWorking, 2);
    EXPECT_FALSE(f.m.needsYou);
    ASSERT_EQ(chown(QFile::encodeName(f.folder.path()).constData(), nobody, nobody), 0);
    f.scan();
    EXPECT_EQ(f.m.agentsWorking, 0);
}

TEST(Agents, AreLookedAtOnTheQueueOnceAtATime) {
    AgentFixture f;
    HeldQueue queue;
    f.agent("a", "x");
    {
        AgentWatcher watcher(f.m, f.loop, queue, f.workspace, f.folder.path());
        watcher.start();
        f.loop.advance(10);
        ASSERT_EQ(queue.jobs.size(), 1);
        queue.runAll();
        EXPECT_EQ(f.m.agentsWorking, 0) << "nothing is written there";
        f.loop.advance(2.5);
        EXPECT_EQ(f.m.agentsWorking, 1);
        f.agent("b", "x");
        ASSERT_EQ(queue.jobs.size(), 1);
    }
    queue.runAll();
    f.loop.drain();
    EXPECT_EQ(f.m.agentsWorking, 1) << "a result that comes too late is dropped";
}

TEST(Agents, AHugeDirectoryIsNotReadToItsEnd) {
    AgentFixture f;
    f.agent("z", "last");
    for (int i = 0; i < 200; ++i) f.write(qPrintable(QString::number(i)), QByteArray(8192, '\n'));
    f.scan();
    EXPECT_EQ(f.m.agentsWorking, 201);
    EXPECT_EQ(f.m.agentProjects.get(), QString()) << "read after more than a mebibyte";
    for (int i = 200; i < 5000; ++i) f.write(qPrintable(QString::number(i)), {});
    f.scan();
    EXPECT_LE(f.m.agentsWorking, 4096);
    EXPECT_GT(f.m.agentsWorking, 4000);
}

TEST(CapsLockSense, TellsOnlyChanges) {
    CreatureFixture f;
    CapsLock caps(f.m);
    std::vector<std::optional<Animation>> changes;
    const auto seen = f.m.objectDidChange.subscribe([&](const auto& how) { changes.push_back(how); });
    caps.capsChanged(false);
    EXPECT_TRUE(changes.empty());
    caps.capsChanged(true);
    caps.capsChanged(true);
    ASSERT_EQ(changes.size(), 1U);
    EXPECT_EQ(changes[0], Animation::easeOut(0.2));
}

}  // namespace
