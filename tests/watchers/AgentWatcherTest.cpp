#include <fcntl.h>
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

namespace {

/// A record with these lines 4 and 5.
QByteArray record(const QByteArray& project, const QByteArray& terminal) {
    return "1\n2\n3\n" + project + '\n' + terminal + '\n';
}

class AgentWatcherTest : public testing::Test, protected CreatureFixture {
 protected:
    QByteArray path(const QByteArray& name) const { return QFile::encodeName(agents_.path()) + '/' + name; }

    void write(const QByteArray& name, const QByteArray& text = {}) const {
        QFile file(QFile::decodeName(path(name)));
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(text);
    }
    void removeAll() const {
        QDir folder(agents_.path());
        for (const QString& name :
             folder.entryList(QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot))
            ASSERT_TRUE(folder.remove(name) || folder.rmdir(name)) << qPrintable(name);
    }

    QTemporaryDir agents_;
    MemoryWorkspace workspace;
    AgentWatcher watcher{m, loop, workspace, agents_.path()};
};

using Entries = std::vector<std::pair<QByteArray, QByteArray>>;

struct FolderCase {
    const char* name;
    Entries entries;
    int working;
    const char* projects;
    bool needsYou;
    std::optional<QString> terminal;
};

TEST_F(AgentWatcherTest, TellsWhatTheFolderSays) {
    const QByteArray web = record("web", "Konsole");
    const std::vector<FolderCase> cases{
        {"empty", {}, 0, "", false, {}},
        {"one", {{"a1", web}}, 1, "web", false, {}},
        {"distinct and sorted", {{"a", web}, {"b", record("api", "X")}, {"c", web}}, 3, "api · web", false, {}},
        {"three of five, by plain order",
         {{"a", record("e", "")},
          {"b", record("Z", "")},
          {"c", record("b", "")},
          {"d", record("c", "")},
          {"e", record("é", "")}},
         5,
         "Z · b · c",
         false,
         {}},
        {"waiting", {{"a1", web}, {"a1.flag", "waiting for input"}}, 0, "", false, {}},
        {"alerting", {{"a1", web}, {"a1.flag", "alerted"}}, 0, "", true, u"Konsole"_qs},
        {"no known flag", {{"a1", web}, {"a1.flag", "Alert"}}, 1, "web", false, {}},
        {"flag behind a space", {{"a1", web}, {"a1.flag", " wait"}}, 1, "web", false, {}},
        {"empty flag", {{"a1", web}, {"a1.flag", ""}}, 1, "web", false, {}},
        {"flag that is not UTF-8", {{"a1", web}, {"a1.flag", "wait\xff"}}, 1, "web", false, {}},
        {"flag of nobody", {{"a1", web}, {"a2.flag", "alert"}}, 1, "web", false, {}},
        {"first alert with a terminal",
         {{"a", "1\n2\n3\nshort"},
          {"a.flag", "alert"},
          {"b", record("", "One")},
          {"b.flag", "alert"},
          {"c", record("", "Two")},
          {"c.flag", "alert"}},
         0,
         "",
         true,
         u"One"_qs},
        {"alert without a terminal", {{"a", "1\n2\n3\n4"}, {"a.flag", "alert"}}, 0, "", true, {}},
        {"alert with an empty terminal line", {{"a", record("web", "")}, {"a.flag", "alert"}}, 0, "", true, u""_qs},
        {"asking", {{"a", web}, {"a.ask", ""}}, 1, "web", true, u"Konsole"_qs},
        {"asking while waiting", {{"a", web}, {"a.flag", "wait"}, {"a.ask", ""}}, 0, "", true, u"Konsole"_qs},
        {"the first ask only", {{"a.ask", ""}, {"b", web}, {"b.ask", ""}}, 1, "web", true, {}},
        {"an alert goes before an ask",
         {{"a", web}, {"a.ask", ""}, {"b", record("", "Two")}, {"b.flag", "alert"}},
         1,
         "web",
         true,
         u"Two"_qs},
        {"an ask fills in for an alert",
         {{"a", web}, {"a.ask", ""}, {"b", "short"}, {"b.flag", "alert"}},
         1,
         "web",
         true,
         u"Konsole"_qs},
        {"a hidden ask counts, its record does not", {{".x", web}, {".x.ask", ""}}, 0, "", true, u"Konsole"_qs},
        {"hidden and foreign",
         {{".a", web}, {".ask", ""}, {"b.txt", web}, {"c.ASK", ""}, {"d.flag", "alert"}},
         0,
         "",
         false,
         {}},
        {"the last extension counts", {{"a.b", web}, {"a.ask.old", ""}}, 0, "", false, {}},
        {"full stop at the end", {{"a.", web}}, 1, "web", false, {}},
        {"record that is not UTF-8", {{"a", record("w\xc3", "T")}}, 1, "", false, {}},
        {"record of garbage", {{"a", QByteArray("\0\n\0\n\0\nweb\n", 10)}}, 1, "web", false, {}},
        {"too few lines", {{"a", "1\n2\n3"}, {"b", ""}, {"c", "1\n2\n3\n"}}, 3, "", false, {}},
    };
    for (const FolderCase& c : cases) {
        removeAll();
        for (const auto& [name, text] : c.entries) write(name, text);
        watcher.scanAgents();
        EXPECT_EQ(m.agentsWorking, c.working) << c.name;
        EXPECT_EQ(m.agentProjects.get(), QString::fromUtf8(c.projects)) << c.name;
        EXPECT_EQ(m.needsYou, c.needsYou) << c.name;
        EXPECT_EQ(m.blockedTerminal, c.terminal) << c.name;
    }
}

/// Each of these stands in the place of a record and of a flag.
TEST_F(AgentWatcherTest, IsNeitherHeldUpNorFooledByWhatIsNoFile) {
    const QTemporaryDir elsewhere;
    const QString outside = elsewhere.filePath(QStringLiteral("record"));
    QFile secret(outside);
    ASSERT_TRUE(secret.open(QIODevice::WriteOnly));
    secret.write(record("secret", "Secret"));
    secret.close();
    std::vector<int> pipes;  // kept open, so that what is in them stays
    const struct {
        const char* name;
        std::function<void(const QByteArray& path)> make;
    } cases[] = {
        {"pipe", [](const QByteArray& p) { ASSERT_EQ(::mkfifo(p.constData(), 0600), 0); }},
        {"pipe with a record in it",
         [&](const QByteArray& p) {
             ASSERT_EQ(::mkfifo(p.constData(), 0600), 0);
             const int end = ::open(p.constData(), O_RDWR | O_NONBLOCK | O_CLOEXEC);
             const QByteArray text = record("secret", "Secret");
             ASSERT_EQ(::write(end, text.constData(), size_t(text.size())), text.size());
             pipes.push_back(end);
         }},
        {"folder", [](const QByteArray& p) { ASSERT_EQ(::mkdir(p.constData(), 0700), 0); }},
        {"socket",
         [](const QByteArray& p) {
             const int s = ::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
             sockaddr_un address = {};
             address.sun_family = AF_UNIX;
             ASSERT_LT(size_t(p.size()), sizeof address.sun_path);
             std::copy(p.begin(), p.end(), address.sun_path);
             ASSERT_EQ(::bind(s, reinterpret_cast<sockaddr*>(&address), sizeof address), 0);
             ::close(s);
         }},
        {"link",
         [&](const QByteArray& p) { ASSERT_EQ(::symlink(QFile::encodeName(outside).constData(), p.constData()), 0); }},
        {"link to itself", [](const QByteArray& p) { ASSERT_EQ(::symlink(p.constData(), p.constData()), 0); }},
        {"link to a device", [](const QByteArray& p) { ASSERT_EQ(::symlink("/dev/zero", p.constData()), 0); }},
    };
    for (const auto& c : cases) {
        removeAll();
        write("a", record("web", "T"));
        c.make(path("a.flag"));
        c.make(path("b"));
        watcher.scanAgents();
        EXPECT_EQ(m.agentsWorking, 2) << c.name << ": it is there, but says nothing";
        EXPECT_EQ(m.agentProjects.get(), u"web"_qs) << c.name;
    }
    for (const int end : pipes) ::close(end);
}

TEST_F(AgentWatcherTest, ReadsOnlyTheBeginningOfLargeFiles) {
    constexpr int limit = 64 * 1024;
    write("a", record("web", "T") + QByteArray(1 << 20, 'x'));
    // The limit goes through a character, at each of its bytes.
    for (int i = 0; i < 4; ++i) {
        const QByteArray head = record("cut" + QByteArray::number(i), "T");
        const QByteArray frogs = QByteArray("🐸").repeated(limit / 4);
        write("b" + QByteArray::number(i), head + QByteArray((limit - head.size()) % 4 + i, '.') + frogs);
    }
    write("c", QByteArray(limit, '\n') + record("behind", "T"));
    watcher.scanAgents();
    EXPECT_EQ(m.agentProjects.get(), u"cut0 · cut1 · cut2");
    EXPECT_EQ(m.agentsWorking, 6);
    QFile::remove(QFile::decodeName(path("b0")));
    watcher.scanAgents();
    EXPECT_EQ(m.agentProjects.get(), u"cut1 · cut2 · cut3");
}

TEST_F(AgentWatcherTest, StopsCountingSomewhereInAHugeFolder) {
    for (int i = 0; i < 5000; ++i) write(QByteArray::number(i));
    watcher.scanAgents();
    EXPECT_EQ(m.agentsWorking, 4096);
}

TEST_F(AgentWatcherTest, AFolderThatIsNotThereIsEmpty) {
    write("a", record("web", "T"));
    write("a.ask");
    watcher.scanAgents();
    ASSERT_TRUE(m.needsYou);
    removeAll();
    ASSERT_TRUE(QDir().rmdir(agents_.path()));
    const std::function<void()> replacements[] = {
        [] {},
        [this] { ASSERT_TRUE(QFile(agents_.path()).open(QIODevice::WriteOnly)); },
        [this] {
            ASSERT_TRUE(QFile::remove(agents_.path()));
            ASSERT_EQ(::mkfifo(QFile::encodeName(agents_.path()).constData(), 0600), 0);
        },
    };
    for (const auto& replace : replacements) {
        replace();
        watcher.scanAgents();
        EXPECT_EQ(m.agentsWorking, 0);
        EXPECT_EQ(m.agentProjects.get(), QString());
        EXPECT_FALSE(m.needsYou);
        EXPECT_FALSE(m.blockedTerminal);
    }
    ASSERT_TRUE(QFile::remove(agents_.path()));
}

TEST_F(AgentWatcherTest, SpawnsWhenAgentsComeAndWhenOneNeedsTheUser) {
    const auto spawned = [&] {
        const int before = m.spawnCount;
        watcher.scanAgents();
        return m.spawnCount - before;
    };
    write("a", record("web", "T"));
    write("b", record("web", "T"));
    EXPECT_EQ(spawned(), 0) << "the first scan finds them there";
    EXPECT_EQ(spawned(), 0);
    write("c");
    write("d");
    EXPECT_EQ(spawned(), 1) << "once, however many came";
    QFile::remove(QFile::decodeName(path("d")));
    EXPECT_EQ(spawned(), 0) << "fewer";
    write("d");
    EXPECT_EQ(spawned(), 1) << "compared with the scan before, not with the most ever";

    m.toy = Toy::weather;
    write("e");
    EXPECT_EQ(spawned(), 0) << "nobody is there to see it";
    m.toy = Toy::critter;
    EXPECT_EQ(spawned(), 0) << "and it is not made up for";

    write("a.flag", "alert");
    EXPECT_EQ(spawned(), 1);
    EXPECT_EQ(spawned(), 0) << "it still needs the user";
    write("b.ask");
    EXPECT_EQ(spawned(), 0);
    QFile::remove(QFile::decodeName(path("a.flag")));
    EXPECT_EQ(spawned(), 0) << "the ask remains";
    QFile::remove(QFile::decodeName(path("b.ask")));
    EXPECT_EQ(spawned(), 0);
    write("b.ask");
    write("f");
    m.toy = Toy::weather;
    EXPECT_EQ(spawned(), 1) << "for the need alone, whatever is shown";
}

TEST_F(AgentWatcherTest, WritesOnlyWhatChangedAndHow) {
    std::vector<std::optional<Animation>> changes;
    const Subscription subscription =
        m.objectDidChange.subscribe([&](const std::optional<Animation>& how) { changes.push_back(how); });
    using Changes = decltype(changes);
    const auto scan = [&] {
        changes.clear();
        watcher.scanAgents();
        return changes;
    };
    const Animation count = Animation::spring(0.4, 0.7);
    const Animation need = Animation::easeInOut(0.4);
    EXPECT_EQ(scan(), Changes());
    write("a", record("", "T"));
    EXPECT_EQ(scan(), Changes({std::nullopt, count})) << "a spawn, then the number";
    EXPECT_EQ(scan(), Changes());
    write("a", record("web", "T"));
    EXPECT_EQ(scan(), Changes({std::nullopt})) << "the project line jumps";
    write("a.ask");
    EXPECT_EQ(scan(), Changes({need, std::nullopt}));
}

TEST_F(AgentWatcherTest, ScansEveryTwoAndAHalfSecondsAfterTheFirst) {
    write("a");
    watcher.start();
    loop.advance(2.4);
    EXPECT_EQ(m.agentsWorking, 0);
    loop.advance(0.2);
    EXPECT_EQ(m.agentsWorking, 1);
    write("b");
    loop.advance(2.3);
    EXPECT_EQ(m.agentsWorking, 1);
    loop.advance(0.2);
    EXPECT_EQ(m.agentsWorking, 2);
    EXPECT_EQ(m.spawnCount, 1);
}

TEST_F(AgentWatcherTest, BringsTheBlockedTerminalForward) {
    watcher.focusBlockedTerminal();
    EXPECT_EQ(workspace.activated, QStringList());
    write("a", record("web", "Konsole"));
    write("a.flag", "alert");
    watcher.scanAgents();
    watcher.focusBlockedTerminal();
    EXPECT_EQ(workspace.activated, QStringList({u"Konsole"_qs}));
}

}  // namespace
