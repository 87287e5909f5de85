#include <gtest/gtest.h>

#include <QElapsedTimer>
#include <QFile>
#include <QTemporaryDir>

#include "platform/linux/PathReferences.h"
#include "platform/linux/ThreadQueues.h"

namespace {

/// A disk that never answers.
class DeadQueue : public BackgroundQueue {
 public:
    void run(std::function<void()> job) override { jobs.push_back(std::move(job)); }
    std::vector<std::function<void()>> jobs;
};

TEST(PathReferences, LeadBackToFilesThatExist) {
    const QTemporaryDir folder;
    ThreadQueue queue;
    const PathReferences references(queue);
    const QUrl file = QUrl::fromLocalFile(folder.filePath(QStringLiteral("Grüße #1 %41?.txt")));
    ASSERT_TRUE(QFile(file.toLocalFile()).open(QIODevice::WriteOnly));
    const auto bookmark = references.bookmark(file);
    ASSERT_TRUE(bookmark);
    EXPECT_EQ(references.resolve(*bookmark), file);
    ASSERT_TRUE(QFile::remove(file.toLocalFile()));
    EXPECT_FALSE(references.resolve(*bookmark));

    for (const char* other : {"https://example.com/a", "relative/path", ""})
        EXPECT_FALSE(references.bookmark(QUrl(QString::fromUtf8(other)))) << other;
    for (const QByteArray& stored : {QByteArray(), QByteArray("tmp"), QByteArray("/tmp\0x", 6), QByteArray("\xff/")})
        EXPECT_FALSE(references.resolve(stored)) << stored.toHex().constData();
}

TEST(PathReferences, ADiskThatDoesNotAnswerLosesNothing) {
    DeadQueue queue;
    const PathReferences references(queue);
    QElapsedTimer time;
    time.start();
    EXPECT_EQ(references.resolve("/slow/file"), QUrl(QStringLiteral("file:///slow/file")));
    EXPECT_LT(time.elapsed(), 2000);
    ASSERT_EQ(queue.jobs.size(), 1U);
    queue.jobs[0]();  // a late answer finds nobody waiting, and harms nothing
}

}  // namespace
