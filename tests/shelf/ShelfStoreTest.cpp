#include <gtest/gtest.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include "platform/linux/FilePreferences.h"
#include "platform/linux/PathReferences.h"
#include "platform/linux/ThreadQueues.h"
#include "support/Creature.h"

namespace {

/// A model with its real store; its end is the program's end.
struct Stored {
    explicit Stored(const QString& folder) : preferences(folder + QStringLiteral("/preferences"), writing) {}

    void load() {
        m.loadShelf();
        m.loadHeld();
    }

    ManualClock clock;
    ManualLoop loop{clock};
    ThreadSerialQueue writing;
    ThreadQueue disk;
    FilePreferences preferences;
    PathReferences files{disk};
    NotchModel m{clock, loop, preferences, files, QStringLiteral("/nonexistent")};
};

class ShelfStore : public testing::Test {
 protected:
    /// Makes a file in the test's folder.
    QUrl file(const QString& name) const {
        const QString path = folder_.filePath(name);
        EXPECT_TRUE(QFile(path).open(QIODevice::WriteOnly));
        return QUrl::fromLocalFile(path);
    }
    QString folder() const { return folder_.path(); }

    const QTemporaryDir folder_;
};

const Bite kNote = Bite::note(QStringLiteral("100 % of \"it\"\nand = /more"));
const Bite kLink = Bite::link(QUrl(QStringLiteral("https://example.com/a b?q=%41#ü")));

TEST_F(ShelfStore, AllThatIsHeldSurvivesARestart) {
    const QList<QUrl> held{file(QStringLiteral("a b.png")), file(QStringLiteral("Grüße 100%.txt"))};
    QList<HeldTimer> timers;
    {
        Stored s(folder());
        s.load();
        s.m.addItems(held);
        s.m.addBites({kNote, kLink});
        s.m.addTimer(5);
        s.m.addTimer(25);
        s.m.hidden = true;
        timers = s.m.timers;
    }
    Stored s(folder());
    s.load();
    EXPECT_EQ(s.m.items.get(), held);
    EXPECT_EQ(s.m.bites.get(), QList<Bite>({kNote, kLink}));
    EXPECT_EQ(s.m.timers.get(), timers);
    EXPECT_TRUE(s.m.hidden);
    EXPECT_EQ(s.m.swallowCount, 0) << "what is only remembered is not swallowed";
}

TEST_F(ShelfStore, RemovedThingsStayRemovedAndFilesStayOnTheDisk) {
    const QUrl a = file(QStringLiteral("a"));
    const QUrl b = file(QStringLiteral("b"));
    {
        Stored s(folder());
        s.m.addItems({a, b});
        s.m.addBites({kNote, kLink});
        s.m.addTimer(1);
        s.m.addTimer(2);
        s.m.hidden = true;
        s.m.removeItem(a);
        s.m.removeBite(kNote);
        s.m.removeTimer(s.m.timers->first());
        s.m.hidden = false;
    }
    Stored s(folder());
    s.load();
    EXPECT_EQ(s.m.items.get(), QList<QUrl>({b}));
    EXPECT_EQ(s.m.bites.get(), QList<Bite>({kLink}));
    ASSERT_EQ(s.m.timers->size(), 1);
    EXPECT_EQ(s.m.timers->first().minutes, 2);
    EXPECT_FALSE(s.m.hidden);
    EXPECT_TRUE(QFile::exists(a.toLocalFile()));
}

TEST_F(ShelfStore, AFileThatIsGoneIsForgotten) {
    const QUrl a = file(QStringLiteral("a"));
    const QUrl b = file(QStringLiteral("b"));
    const QString key = QStringLiteral("glimmet.shelf");
    { Stored(folder()).m.addItems({a, b}); }
    ASSERT_TRUE(QFile::remove(a.toLocalFile()));
    {
        Stored s(folder());
        s.load();
        EXPECT_EQ(s.m.items.get(), QList<QUrl>({b}));
        EXPECT_EQ(s.preferences.dataList(key)->size(), 1) << "also from the store";
    }
    file(QStringLiteral("a"));
    Stored s(folder());
    s.load();
    EXPECT_EQ(s.m.items.get(), QList<QUrl>({b}));
}

TEST_F(ShelfStore, RungTimersEndWithTheProgramAndMissedOnesRing) {
    {
        Stored s(folder());
        s.m.addTimer(1);
        s.m.addTimer(2);
        s.m.addTimer(60);
        s.clock.step(61);
        ASSERT_TRUE(s.m.tickTimers());
    }
    Stored s(folder());
    s.clock.step(150);
    s.load();
    ASSERT_EQ(s.m.timers->size(), 2);
    EXPECT_FALSE(s.m.timers->first().done) << "it rings at the first tick";
    EXPECT_TRUE(s.m.tickTimers());
    EXPECT_TRUE(s.m.timers->first().done);
    EXPECT_FALSE(s.m.timers->last().done);
}

TEST_F(ShelfStore, WhatCannotBeDecodedStaysStoredUntilTheNextSave) {
    const QByteArray broken = R"([{"note":{"_0":"good"}},{"note":{}}])";
    const QString bites = QStringLiteral("glimmet.bites");
    {
        Stored s(folder());
        s.preferences.setData(bites, broken);
        s.preferences.setData(QStringLiteral("glimmet.timers"), "[7]");
        s.preferences.setText(QStringLiteral("glimmet.shelf"), QStringLiteral("/tmp"));
        s.preferences.setDataList(QStringLiteral("glimmet.hidden"), {"true"});
        s.load();
        EXPECT_EQ(s.m.heldCount(), 0);
        EXPECT_FALSE(s.m.hidden);
    }
    Stored s(folder());
    s.load();
    EXPECT_EQ(s.preferences.data(bites), broken);
    s.m.addBites({kNote});
    EXPECT_EQ(decodeBites(*s.preferences.data(bites)), QList<Bite>({kNote}));
    EXPECT_EQ(s.preferences.data(QStringLiteral("glimmet.timers")), QByteArray("[7]")) << "each for itself";
}

TEST_F(ShelfStore, OfTheFilesOnlyThoseWithoutAReferenceAreNotStored) {
    const QUrl a = file(QStringLiteral("a"));
    {
        Stored s(folder());
        s.m.addItems({QUrl(QStringLiteral("https://example.com/x")), a});
        EXPECT_EQ(s.m.items->size(), 2) << "held all the same";
    }
    Stored s(folder());
    s.load();
    EXPECT_EQ(s.m.items.get(), QList<QUrl>({a}));
}

/// In each round all bites and timers say the number of the round, until the process is killed.
[[noreturn]] void holdForever(const QString& folder, int pipe) {
    Stored s(folder);
    s.load();
    for (int round = 1;; ++round) {
        QList<Bite> bites;
        QList<HeldTimer> timers;
        for (int i = 0; i < 8; ++i) {
            bites.append(Bite::note(QStringLiteral("%1/%2").arg(round).arg(QString(500, u'x'))));
            timers.append({QUuid::createUuid(), s.clock.now(), round, false});
        }
        s.m.bites = bites;
        s.m.timers = timers;
        if (::write(pipe, "", 1) != 1) ::_exit(1);
    }
}

TEST_F(ShelfStore, AKillLeavesWholeCollections) {
    for (int kill = 0; kill < 15; ++kill) {
        const QString path = folder() + QStringLiteral("/preferences");
        QFile::remove(path);
        int pipe[2];
        ASSERT_EQ(::pipe(pipe), 0);
        const pid_t child = ::fork();
        if (child == 0) holdForever(folder(), pipe[1]);
        ::close(pipe[1]);
        char byte = 0;
        for (int extra = 3 * kill; extra >= 0; extra -= QFile::exists(path)) ASSERT_EQ(::read(pipe[0], &byte, 1), 1);
        ASSERT_EQ(::kill(child, SIGKILL), 0);
        ASSERT_EQ(::waitpid(child, nullptr, 0), child);
        ::close(pipe[0]);

        Stored s(folder());
        s.load();
        // The very first write holds the bites only.
        ASSERT_EQ(s.m.bites->size(), 8);
        for (const Bite& bite : s.m.bites.get()) EXPECT_EQ(bite, s.m.bites->first());
        const int round = s.m.bites->first().text()->section(u'/', 0, 0).toInt();
        ASSERT_TRUE(s.m.timers->size() == 8 || (s.m.timers->isEmpty() && round == 1)) << s.m.timers->size();
        for (const HeldTimer& timer : s.m.timers.get()) EXPECT_EQ(timer.minutes, s.m.timers->first().minutes);
        if (!s.m.timers->isEmpty()) {
            EXPECT_LE(round - s.m.timers->first().minutes, 1) << "bites are saved before timers";
            EXPECT_GE(round, s.m.timers->first().minutes);
        }
    }
}

TEST_F(ShelfStore, TheDroppedFolderIsMadeWheneverItIsAskedFor) {
    ManualClock clock;
    ManualLoop loop{clock};
    MemoryPreferences preferences;
    MemoryFiles files;
    const QString data = folder() + QStringLiteral("/data");
    const NotchModel m(clock, loop, preferences, files, data);
    for (int i = 0; i < 2; ++i) {
        const QUrl dropped = m.droppedFolder();
        EXPECT_EQ(dropped, QUrl::fromLocalFile(data + QStringLiteral("/Glimmet/Dropped/")));
        EXPECT_TRUE(QDir(dropped.toLocalFile()).exists());
        ASSERT_TRUE(QDir(data).removeRecursively());
    }
    ASSERT_TRUE(QFile(data).open(QIODevice::WriteOnly));
    EXPECT_EQ(m.droppedFolder(), QUrl::fromLocalFile(data + QStringLiteral("/Glimmet/Dropped/")));
}

}  // namespace
