#include <gtest/gtest.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include "support/Creature.h"
#include "watchers/AgentWatcher.h"
#include "watchers/CapsLock.h"

namespace {

struct AgentFixture : CreatureFixture {
    QTemporaryDir folder;
    MemoryWorkspace workspace;
    AgentWatcher watcher{m, loop, workspace, folder.path()};

    QString path(const QString& name) const { return folder.filePath(name); }

    void write(const char* name, const QByteArray& content) {
        QFile file(path(QLatin1String(name)));
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(content);
    }

    void agent(const char* name, const char* project, const char* terminal = "Terminal") {
        write(name, QByteArray("1\n2\n3\n") + project + "\n" + terminal + "\n");
    }
};

TEST(Agents, AreCountedByTheirFlags) {
    struct Case {
        const char* flag;
        int working;
        bool needs;
    };
    for (const auto& [flag, working, needs] : std::vector<Case>{{"waiting for input", 0, false},
                                                                {"alerted", 0, true},
                                                                {"Alert", 1, false},
                                                                {" wait", 1, false},
                                                                {"", 1, false}}) {
        AgentFixture f;
        f.agent("a1", "web");
        f.write("a1.flag", flag);
        f.watcher.scanAgents();
        EXPECT_EQ(f.m.agentsWorking, working) << flag;
        EXPECT_EQ(f.m.needsYou, needs) << flag;
        EXPECT_EQ(f.m.agentProjects.get(), working ? QStringLiteral("web") : QString()) << flag;
        EXPECT_EQ(f.m.blockedTerminal.has_value(), needs) << flag;
    }
}

TEST(Agents, ShowUpToThreeProjectsInOrder) {
    AgentFixture f;
    f.agent("a", "web");
    f.agent("b", "api");
    f.agent("c", "web");
    f.watcher.scanAgents();
    EXPECT_EQ(f.m.agentsWorking, 3);
    EXPECT_EQ(f.m.agentProjects.get(), QStringLiteral("api · web"));
    f.agent("d", "Zoo");
    f.agent("e", "core");
    f.agent("f", "");
    f.agent(".hidden", "no");
    f.write("g.txt", "1\n2\n3\nno\n");
    f.write(".ask", "");
    f.watcher.scanAgents();
    EXPECT_EQ(f.m.agentsWorking, 6);
    EXPECT_EQ(f.m.agentProjects.get(), QStringLiteral("Zoo · api · core"));
    EXPECT_FALSE(f.m.needsYou);
}

TEST(Agents, TheTerminalComesFromTheFirstAlertElseFromTheAsk) {
    AgentFixture f;
    f.write("a", "1\n2\n3\nproject");  // four lines: alerting, but it names no terminal
    f.write("a.flag", "alert");
    f.watcher.scanAgents();
    EXPECT_TRUE(f.m.needsYou);
    EXPECT_FALSE(f.m.blockedTerminal);
    f.agent("b", "x", "Konsole");
    f.write("b.ask", "");
    f.watcher.scanAgents();
    EXPECT_EQ(f.m.blockedTerminal, QStringLiteral("Konsole"));
    f.agent("c", "x", "Terminal");
    f.write("c.flag", "alert");
    f.watcher.scanAgents();
    EXPECT_EQ(f.m.blockedTerminal, QStringLiteral("Terminal"));
    f.watcher.focusBlockedTerminal();
    EXPECT_EQ(f.workspace.activated, QStringList{QStringLiteral("Terminal")});
    ASSERT_TRUE(QDir(f.folder.path()).removeRecursively());
    f.watcher.scanAgents();
    EXPECT_FALSE(f.m.needsYou);
    EXPECT_FALSE(f.m.blockedTerminal);
    EXPECT_EQ(f.m.agentsWorking, 0);
}

TEST(Agents, TheFirstOfSeveralAlertsIsFirstByName) {
    AgentFixture f;
    for (const char* name : {"m", "z", "c", "x", "a", "k", "b"}) {
        f.agent(name, "x", name);
        f.write(qPrintable(QLatin1String(name) + QLatin1String(".flag")), "alert");
    }
    f.watcher.scanAgents();
    EXPECT_EQ(f.m.blockedTerminal, QStringLiteral("a"));
}

TEST(Agents, OnlyWhatChangedIsWrittenAndEachInItsOwnWay) {
    AgentFixture f;
    std::vector<std::optional<Animation>> changes;
    const auto seen = f.m.objectDidChange.subscribe([&](const auto& how) { changes.push_back(how); });
    const auto scan = [&] {
        changes.clear();
        f.watcher.scanAgents();
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
    QFile::remove(f.path(QStringLiteral("c.flag")));
    QFile::remove(f.path(QStringLiteral("c")));
    f.loop.advance(2.5);
    EXPECT_EQ(f.m.spawnCount, 2);
    f.m.toy = Toy::critter;
    f.agent("c", "x");
    f.loop.advance(2.5);
    EXPECT_EQ(f.m.spawnCount, 3) << "more than at the scan before, though not more than ever";
}

TEST(Agents, NothingInTheDirectoryCanHoldUpTheScan) {
    AgentFixture f;
    const auto name = [&](const char* n) { return QFile::encodeName(f.path(QLatin1String(n))); };
    f.agent("good", "web");
    ASSERT_EQ(mkfifo(name("fifo").constData(), 0600), 0);
    ASSERT_EQ(mkfifo(name("good.flag").constData(), 0600), 0);
    ASSERT_EQ(symlink("/dev/zero", name("link").constData()), 0);
    AgentFixture elsewhere;
    elsewhere.agent("secret", "secret");
    ASSERT_EQ(
        symlink(QFile::encodeName(elsewhere.path(QStringLiteral("secret"))).constData(), name("alias").constData()), 0);
    ASSERT_EQ(mkfifo(name("full").constData(), 0600), 0);
    QFile full(f.path(QStringLiteral("full")));  // open at both ends, so that a reader finds what is in it
    ASSERT_TRUE(full.open(QIODevice::ReadWrite | QIODevice::Unbuffered | QIODevice::ExistingOnly));
    full.write("1\n2\n3\nsecret\n");
    ASSERT_EQ(mkdir(name("folder").constData(), 0700), 0);
    const int socket = ::socket(AF_UNIX, SOCK_STREAM, 0);
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    qstrncpy(address.sun_path, name("sock").constData(), sizeof address.sun_path);
    ASSERT_EQ(bind(socket, reinterpret_cast<const sockaddr*>(&address), sizeof address), 0);
    f.write("latin", "1\n2\n3\n\xe4\xf6\n");
    f.write("huge", QByteArray("1\n2\n3\n") + QByteArray(1 << 20, 'x') + "\nTerminal\n");
    f.watcher.scanAgents();
    close(socket);
    // All of them count; only what is a regular file and text has a project.
    EXPECT_EQ(f.m.agentsWorking, 9);
    EXPECT_TRUE(f.m.agentProjects->contains(QStringLiteral("web")));
    EXPECT_EQ(f.m.agentProjects->size(), 3 + 3 + 64 * 1024 - 6);
}

TEST(Agents, ACharacterCutAtTheLimitDoesNotSpoilTheRest) {
    for (const QByteArray& character : {QByteArray("ä"), QByteArray("日"), QByteArray("🐸")}) {
        for (qsizetype before = 0; before <= character.size(); ++before) {
            AgentFixture f;
            QByteArray record = "1\n2\n3\nweb\n";
            record += QByteArray(64 * 1024 - before - record.size(), 'x') + character + " and more\n";
            f.write("a", record);
            f.watcher.scanAgents();
            EXPECT_EQ(f.m.agentProjects.get(), QStringLiteral("web")) << character.constData() << ' ' << before;
        }
    }
}

TEST(Agents, AHugeDirectoryIsNotReadToItsEnd) {
    AgentFixture f;
    for (int i = 0; i < 5000; ++i) f.write(qPrintable(QString::number(i)), {});
    f.watcher.scanAgents();
    EXPECT_EQ(f.m.agentsWorking, 4096);
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
