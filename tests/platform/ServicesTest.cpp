#include <unistd.h>

#include <QDateTime>
#include <thread>

#include "platform/FileUrls.h"
#include "platform/linux/PathReferences.h"
#include "platform/linux/QtMainLoop.h"
#include "platform/linux/SessionRestart.h"
#include "platform/linux/SystemClock.h"
#include "platform/linux/ThreadQueues.h"
#include "support/Environment.h"
#include "support/ManualLoop.h"
#include "support/MemoryPorts.h"
#include "support/TestFolder.h"
#include "support/XSession.h"

namespace {

TEST(QtMainLoop, PostsInOrderFromAnyThread) {
    QtMainLoop loop;
    std::vector<int> order;
    std::thread::id ranOn;
    loop.post([&] {
        order.push_back(1);
        loop.post([&] { order.push_back(3); });
    });
    loop.post([&] { order.push_back(2); });
    std::thread([&] { loop.post([&] { ranOn = std::this_thread::get_id(); }); }).join();
    EXPECT_TRUE(order.empty());
    EXPECT_TRUE(waitFor([&] { return order == std::vector{1, 2, 3} && ranOn == std::this_thread::get_id(); }));
}

TEST(QtMainLoop, TimersMayDropThemselvesAndOthersThatAreDue) {
    QtMainLoop loop;
    int ticks = 0, fired = 0;
    TimerHandle repeating, rivals[2];
    repeating = loop.every(0.005, [&, big = std::string(1000, 'x')] {
        if (++ticks == 3) repeating.cancel();
        EXPECT_EQ(big.size(), 1000U);  // the closure outlives the cancelling
    });
    for (int i = 0; i < 2; ++i) rivals[i] = loop.after(0.001, [&, i] { ++fired, rivals[1 - i].cancel(); });
    std::this_thread::sleep_for(std::chrono::milliseconds(20));  // both are due now, in one turn of the loop
    bool late = false;
    const TimerHandle end = loop.after(0.1, [&] { late = true; });
    EXPECT_TRUE(waitFor([&] { return late; }));
    EXPECT_EQ(ticks, 3);
    EXPECT_EQ(fired, 1);
}

TEST(SystemClock, CountsFromItsReferenceAndKnowsTheLocalHour) {
    const SystemClock clock;
    const QDateTime reference({2001, 1, 1}, {0, 0}, Qt::UTC);
    EXPECT_NEAR(clock.now().seconds, double(reference.msecsTo(QDateTime::currentDateTimeUtc())) / 1000, 0.5);
    EnvironmentVariable zone("TZ", "XYZ-5");
    EXPECT_EQ(clock.localHour({0}), 5);
    qputenv("TZ", "XYZ-2");  // as when the user has travelled
    const SystemClock later;
    for (const auto& [seconds, hour] : {std::pair(0.0, 2), {-1, 1}, {86400 * 100 + 21.99 * 3600, 23}})
        EXPECT_EQ(later.localHour({seconds}), hour) << seconds;
}

class PathReferencesTest : public testing::Test {
 protected:
    QByteArray path(const QByteArray& name) const { return folder.path(name); }
    void rename(const QByteArray& from, const QByteArray& to) const {
        ASSERT_EQ(::rename(path(from).constData(), path(to).constData()), 0);
    }
    /// What the callback is called with that `ask` is given.
    template <class Answer>
    std::optional<Answer> answerTo(const auto& ask) {
        std::optional<std::optional<Answer>> result;
        ask([&](const std::optional<Answer>& answer) { result = answer; });
        EXPECT_TRUE(waitFor([&] { return result.has_value(); }));
        return result.value_or(std::nullopt);
    }
    auto bookmark(const QUrl& file) {
        return answerTo<QByteArray>([&](const auto& done) { references.bookmark(file, done); });
    }
    QByteArray bookmark(const QByteArray& name) {
        const auto bytes = bookmark(fileUrl(path(name)));
        EXPECT_TRUE(bytes && !bytes->startsWith('/') && bytes->endsWith(path(name))) << "with the file's identity";
        return bytes.value_or(QByteArray());
    }
    auto resolve(const QByteArray& reference) {
        return answerTo<QUrl>([&](const auto& done) { references.resolve(reference, done); });
    }

    TestFolder folder;
    QtMainLoop loop;
    ThreadQueue queue{DiskLanes::kMaxThreads};
    PathReferences references{queue, loop};
};

TEST_F(PathReferencesTest, FindFilesByPathAndByIdentityInTheirFolder) {
    for (const QByteArray& name : {QByteArray("line\nbreak 50%"), QByteArray("caf\xe9:b"), QByteArray(255, 'n')}) {
        SCOPED_TRACE(name.constData());
        folder.write(name, "x");
        const QByteArray stored = bookmark(name);
        EXPECT_EQ(resolve(stored), fileUrl(path(name)));
        EXPECT_EQ(resolve(path(name)), fileUrl(path(name))) << "a path alone is a reference too";
        rename(name, "elsewhere");
        EXPECT_EQ(resolve(stored), fileUrl(path("elsewhere")));
        EXPECT_FALSE(resolve(path(name)));
        EXPECT_FALSE(resolve("9" + stored)) << "on another device";

        folder.write(name, "x");
        EXPECT_EQ(resolve(stored), fileUrl(path(name))) << "the path goes first";
        for (const QByteArray& old : {QByteArray("elsewhere"), name}) folder.remove(old);
        folder.write("successor", "x");  // which may get the inode
        EXPECT_FALSE(resolve(stored));
        folder.remove("successor");
    }
    // Folders and links are files, too.
    folder.write("d/file", "x");
    folder.write("target", "x");
    ASSERT_EQ(::symlink("target", path("link").constData()), 0);
    for (const QByteArray& name : {QByteArray("d/"), QByteArray("link")}) {
        const QByteArray stored = bookmark(name), moved = "moved " + name.left(4);
        rename(name, moved);
        EXPECT_EQ(resolve(stored), fileUrl(path(moved.endsWith('/') ? moved.chopped(1) : moved)));
    }
    const QByteArray link = bookmark("moved link");
    rename("target", "gone");
    EXPECT_FALSE(resolve(link)) << "it leads nowhere";
}

TEST_F(PathReferencesTest, TakeNothingForAReferenceThatIsNone) {
    folder.write("file", "x");
    const QByteArray stored = bookmark("file"), rest = stored.mid(stored.indexOf(':'));
    rename("file", "renamed");
    for (const QByteArray& odd :
         {QByteArray("/no/such/file"), QByteArray("relative"), QByteArray("/a\0b", 4), QByteArray("1:2:3"),
          QByteArray(), "x" + stored, rest.mid(1), "1:" + stored, ":::" + path("renamed"), "-1" + rest})
        EXPECT_FALSE(resolve(odd)) << odd.constData();
    for (const char* url : {"https://a.example/", "file:", "relative", "file:///a%00b"})
        EXPECT_FALSE(bookmark(QUrl(QLatin1String(url)))) << url;
}

/// Disks that answer when they are told to.
struct SilentDisks {
    ManualClock clock;
    ManualLoop loop{clock};
    HeldQueue queue;
    void answer() {
        queue.runAll();
        loop.drain();
    }
};

TEST(PathReferences, GiveSilentDisksTheBenefitOfTheDoubt) {
    SilentDisks disks;
    PathReferences references(disks.queue, disks.loop);
    const QUrl url = fileUrl("/no/such/caf\xe9");
    QList<std::optional<QUrl>> found;
    bool told = false;
    references.resolve("1:2:3:/no/such/caf\xe9", [&](const auto& file) { found.append(file); });
    references.bookmark(url, [&](const auto& reference) { told = !reference; });
    disks.loop.advance(0.9);
    EXPECT_TRUE(found.isEmpty());
    disks.loop.advance(0.2);
    EXPECT_EQ(found, QList{std::optional(url)});
    EXPECT_EQ(references.plain(url), "/no/such/caf\xe9");
    EXPECT_FALSE(references.plain(fileUrl('/' + QByteArray(5000, 'x')))) << "no path is that long";
    EXPECT_FALSE(told);
    while (!told) disks.answer();
    EXPECT_EQ(found.size(), 1) << "only the first answer counts";
}

TEST(DiskLanes, LetOneSilentDiskHoldUpFewOthers) {
    SilentDisks disks;
    DiskLanes lanes(disks.queue, disks.loop);
    int answers = 0;
    const auto ask = [&](const QByteArray& path) {
        lanes.ask(
            path, [] { return 1; }, [&](int one) { answers += one; });
        return int(disks.queue.jobs.size());
    };
    EXPECT_EQ(ask("/proc/a/1"), 1);
    EXPECT_EQ(ask("/proc/a/2"), 1) << "the folder's turn comes later";
    for (const char* other : {"/proc/b/1", "/proc/c/1", "/proc/d/1", "/proc/e/1"}) ask(other);
    EXPECT_EQ(disks.queue.jobs.size(), 3) << "enough for one file system";
    EXPECT_EQ(ask("/nowhere/1"), 4) << "the others go on";
    while (answers < 7) {
        const int before = answers;
        disks.answer();
        ASSERT_GT(answers, before);
    }
}

TEST(SessionRestart, GivesTheToolkitOnlyWhatIsItsOwn) {
    const auto list = [](const char* words) { return QString::fromLatin1(words).split(u' '); };
    for (const auto& [given, passed] : {std::pair{"glimmet --seed -session 1_2 -x", "glimmet -session 1_2"},
                                        {"glimmet -platform x -session", "glimmet"}})
        EXPECT_EQ(toolkitArguments(list(given)), list(passed)) << given;
}

}  // namespace
