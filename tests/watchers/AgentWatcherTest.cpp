#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include "support/Creature.h"
#include "support/TestFolder.h"
#include "watchers/AgentWatcher.h"
#include "watchers/CapsLock.h"

namespace {

struct AgentFixture : CreatureFixture {
    TestFolder folder;
    InlineQueue disk;
    MemoryWorkspace workspace;
    const QString path = QString::fromUtf8(folder.path().chopped(1));
    AgentWatcher watcher{m, loop, disk, workspace, path};

    void agent(const char* name, const char* project, const char* terminal = "Terminal") const {
        folder.write(name, QByteArray("1\n2\n3\n") + project + "\n" + terminal + "\n");
    }
    void scan() {
        watcher.scanAgents();
        loop.drain();
    }
};

TEST(Agents, AreWhatTheirFilesSay) {
    const QByteArray web = "1\n2\n3\nweb\nTerminal\n", kilobyte(1024, 'x');
    const struct {
        QByteArray files;  // "name=text|...", with a comma for a line feed and a # for the first three lines
        int working;
        const char* projects;
        bool needs = false;
        const char* terminal = nullptr;
    } cases[] = {
        {"a=#web,Terminal|a.flag=waiting for input", 0, ""},
        {"a=#web,Terminal|a.flag=alerted", 0, "", true, "Terminal"},
        {"a=#web,|a.flag=Alert|b=#web,|b.flag= wait|c=#web,|c.flag=alert \xff", 3, "web"},
        {"c=#c|d=#d|e=#e|f=#f", 4, "c · d · e"},
        {"Zoo=#Zoo|a=#web|b=#,Terminal|c=#web", 4, "Zoo · web"},
        {".a=#web|a.txt=#web|.ask=", 0, ""},
        {"a=#web|a.flag=alert|b=#api,Konsole|b.flag=alert|c=#web,Terminal|c.flag=alert", 0, "", true, "Konsole"},
        {"a=#web|a.flag=alert|b=#api,Konsole|b.ask=", 1, "api", true, "Konsole"},
        {"a=#api,Konsole|a.ask=|b=#web,Terminal|b.flag=alert", 1, "api", true, "Terminal"},
        {".b=#api,Konsole|.b.ask=", 0, "", true, "Konsole"},
        {"c.ask=", 0, "", true},
        {"a=#\xe4\xf6,", 1, ""},
        // Only the beginning is read, and a character that it ends in does not spoil it.
        {"a=" + web + kilobyte.repeated(8).chopped(web.size() + 1) + "ä and more", 1, "web"},
        {"a=1,2," + kilobyte.repeated(9) + ",web,Terminal|a.flag=alert", 0, "", true},
    };
    for (const auto& [files, working, projects, needs, terminal] : cases) {
        AgentFixture f;
        for (const QByteArray& file : files.split('|')) {
            const qsizetype end = file.indexOf('=');
            f.folder.write(file.first(end), file.mid(end + 1).replace('#', "1,2,3,").replace(',', '\n'));
        }
        f.scan();
        SCOPED_TRACE(files.left(80).constData());
        EXPECT_EQ(f.m.agentsWorking, working);
        EXPECT_EQ(f.m.agentProjects.get(), QString::fromUtf8(projects));
        EXPECT_EQ(f.m.needsYou, needs);
        EXPECT_EQ(f.m.blockedTerminal, terminal ? std::optional(QString::fromUtf8(terminal)) : std::nullopt);
    }
}

TEST(Agents, OnlyWhatChangedIsWrittenAndEachInItsOwnWay) {
    AgentFixture f;
    std::vector<std::optional<Animation>> changes;
    using Changes = decltype(changes);
    const auto seen = f.m.objectDidChange.subscribe([&](const auto& how) { changes.push_back(how); });
    const auto scan = [&] {
        changes.clear();
        f.scan();
        return changes;
    };
    EXPECT_EQ(scan(), Changes());
    f.agent("a", "");
    EXPECT_EQ(scan(), (Changes{std::nullopt, Animation::spring(0.4, 0.7)})) << "a spawn, then the number";
    f.agent("a", "web");
    EXPECT_EQ(scan(), Changes{std::nullopt}) << "the projects";
    EXPECT_EQ(scan(), Changes());
    f.folder.write("a.ask", "");
    EXPECT_EQ(scan(), (Changes{Animation::easeInOut(0.4), std::nullopt})) << "the need, then a spawn";

    changes.clear();
    CapsLock caps(f.m);
    for (const bool on : {false, true, true}) caps.capsChanged(on);
    EXPECT_EQ(changes, Changes{Animation::easeOut(0.2)});
}

TEST(Agents, ANewOneIsNoticedButNotAtTheFirstLook) {
    AgentFixture f;
    f.agent("a", "x");
    f.watcher.start();
    f.loop.advance(2.4);
    EXPECT_EQ(f.m.agentsWorking, 0);
    const auto spawns = [&] {
        f.loop.advance(2.5);
        return f.m.spawnCount.get();
    };
    EXPECT_EQ(spawns(), 0);
    EXPECT_EQ(f.m.agentsWorking, 1);
    f.agent("b", "x");
    EXPECT_EQ(spawns() + spawns(), 2);
    f.m.toy = Toy::weather;
    f.agent("c", "x", "Konsole");
    EXPECT_EQ(spawns(), 1);
    f.folder.write("c.flag", "alert");
    EXPECT_EQ(spawns(), 2);
    f.watcher.focusBlockedTerminal();
    for (const char* name : {"c.flag", "c"}) f.folder.remove(name);
    EXPECT_EQ(spawns(), 2);
    f.watcher.focusBlockedTerminal();
    EXPECT_EQ(f.workspace.activated, QStringList{QStringLiteral("Konsole")}) << "while it needs the user";
    f.m.toy = Toy::critter;
    f.agent("c", "x");
    EXPECT_EQ(spawns(), 3) << "more than at the scan before, though not more than ever";
}

// Anybody may make the directory first, or put something into one that was left open.
TEST(Agents, OnlyTheUsersOwnFilesCount) {
    AgentFixture f;
    const auto path = [&](const char* name) { return f.folder.path(name); };
    const auto working = [&] {
        f.scan();
        EXPECT_FALSE(f.m.needsYou);
        return f.m.agentsWorking.get();
    };
    for (const char* name : {"good", "target"}) f.agent(name, "web");
    f.folder.write("folder/file", "");
    for (const char* name : {"fifo", "good.flag", "good.ask"}) ASSERT_EQ(mkfifo(path(name).constData(), 0600), 0);
    ASSERT_EQ(symlink("good", path("link").constData()), 0);
    const QByteArray link = path("link to the directory");
    ASSERT_EQ(symlink(path("").chopped(1).constData(), link.constData()), 0);
    EXPECT_EQ(working(), 2);
    auto astray = std::make_unique<AgentWatcher>(f.m, f.loop, f.disk, f.workspace, QString::fromUtf8(link));
    for (const bool late : {false, true}) {
        f.m.agentsWorking = 2;
        astray->scanAgents();
        if (late) astray.reset();
        f.loop.drain();
        EXPECT_EQ(f.m.agentsWorking, late ? 2 : 0) << "what comes too late is dropped";
    }

    if (geteuid() != 0) GTEST_SKIP() << "only root can give files to others";
    const uid_t nobody = 65534;
    f.agent("foreign", "evil");
    f.folder.write("foreign.flag", "alert");
    f.folder.write("good.txt.ask", "");
    for (const char* name : {"foreign", "foreign.flag", "good.txt.ask"})
        ASSERT_EQ(chown(path(name).constData(), nobody, nobody), 0);
    EXPECT_EQ(working(), 2);
    ASSERT_EQ(chown(path("").constData(), nobody, nobody), 0);
    EXPECT_EQ(working(), 0);
}

TEST(Agents, AreLookedAtOnTheQueueOnceAtATimeAndNotWithoutEnd) {
    AgentFixture f;
    HeldQueue queue;
    AgentWatcher watcher(f.m, f.loop, queue, f.workspace, f.path);
    watcher.start();
    f.agent("z", "last");
    for (int i = 0; i < 200; ++i) f.folder.write(QByteArray::number(i), QByteArray(8192, '\n'));
    f.loop.advance(10);
    ASSERT_EQ(queue.jobs.size(), 1);
    queue.runAll();
    EXPECT_EQ(f.m.agentsWorking, 0) << "nothing is written there";
    f.loop.advance(2.5);
    EXPECT_EQ(f.m.agentsWorking, 201);
    EXPECT_EQ(f.m.agentProjects.get(), QString()) << "read after more than a mebibyte";
    for (int i = 200; i < 5000; ++i) f.folder.write(QByteArray::number(i), {});
    queue.runAll();
    f.loop.drain();
    EXPECT_TRUE(f.m.agentsWorking > 4000 && f.m.agentsWorking <= 4096) << f.m.agentsWorking.get();
}

}  // namespace
