#include <gtest/gtest.h>
#include <signal.h>
#include <sys/stat.h>

#include <QFile>
#include <QTemporaryDir>
#include <thread>

#include "platform/linux/WorkerProcess.h"

using namespace Qt::StringLiterals;

namespace {

constexpr std::chrono::seconds kLong(20);
constexpr std::chrono::milliseconds kShort(300);

/// A worker that is a shell script.
struct Script {
    QTemporaryDir folder;
    QByteArray path = QFile::encodeName(folder.filePath(u"worker"_s));

    explicit Script(const QByteArray& commands) {
        QFile file(QFile::decodeName(path));
        EXPECT_TRUE(file.open(QIODevice::WriteOnly));
        file.write("#!/bin/sh\n" + commands + "\n");
        file.close();
        EXPECT_EQ(::chmod(path.constData(), 0700), 0);
    }
};

TEST(WorkerProcess, AnswersOrNot) {
    const struct {
        const char* commands;
        std::chrono::milliseconds patience;
        std::optional<QJsonObject> answer;
    } cases[] = {
        {R"(echo '{"a": 1}')", kLong, QJsonObject{{u"a"_s, 1}}},
        {R"(echo noise >&2; sleep 0.1; printf '{"a"'; sleep 0.1; printf ':1}')", kLong, QJsonObject{{u"a"_s, 1}}},
        {"", kLong, {}},
        {"echo garbage", kLong, {}},
        {"echo '[1]'", kLong, {}},
        {R"(echo '{"a": 1}'; exit 1)", kLong, {}},
        {R"(echo '{"a": 1}'; kill -SEGV $$)", kLong, {}},
        {"yes", kLong, {}},
        {"exec sleep 1000", kShort, {}},
        {R"(echo '{"a": 1}'; exec >&-; exec sleep 1000)", kShort, {}},
        {R"(trap '' TERM INT HUP; while :; do sleep 1; done)", kShort, {}},
    };
    for (const auto& [commands, patience, answer] : cases)
        EXPECT_EQ(WorkerProcess(Script(commands).path, patience).run({}), answer) << commands;
    EXPECT_FALSE(WorkerProcess("/no/such/worker").run({}));
}

TEST(WorkerProcess, PassesWordsAsTheyAre) {
    const Script script(R"(printf '{"n": %d, "last": "%s"}' $# "$3")");
    const auto answer = WorkerProcess(script.path).run({u"a b"_s, QString(), u"$HOME *;ü"_s});
    EXPECT_EQ(answer, (QJsonObject{{u"n"_s, 3}, {u"last"_s, u"$HOME *;ü"_s}}));
}

TEST(WorkerProcess, TakesMegabytesOfText) {
    const Script script(R"(printf '{"text": "'; head -c 5000000 /dev/zero | tr '\0' x; printf '"}')");
    const auto answer = WorkerProcess(script.path).run({});
    ASSERT_TRUE(answer);
    EXPECT_EQ((*answer)[u"text"].toString().size(), 5000000);
}

TEST(WorkerProcess, LeavesNoProcessBehind) {
    const Script script(R"(echo $$ > "$1"; exec sleep 1000)");
    const QString path = script.folder.filePath(u"id"_s);
    EXPECT_FALSE(WorkerProcess(script.path, kShort).run({path}));
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    const int id = file.readAll().trimmed().toInt();
    ASSERT_GT(id, 1);
    EXPECT_EQ(::kill(id, 0), -1);
    EXPECT_EQ(errno, ESRCH);
}

TEST(WorkerProcess, StartsCleanOnAnyThread) {
    // The worker must not inherit what the caller's thread blocks, nor its files.
    const Script script(R"raw(
        set -- /proc/$$/fd/[3-9]
        blocked=$(awk '/^SigBlk/ { print $2 }' /proc/self/status)
        printf '{"files": %d, "blocked": "%s"}' "$#" "$blocked")raw");
    std::optional<QJsonObject> answer;
    std::thread([&] {
        sigset_t all;
        ::sigfillset(&all);
        ::pthread_sigmask(SIG_BLOCK, &all, nullptr);
        answer = WorkerProcess(script.path).run({});
    }).join();
    ASSERT_TRUE(answer);
    EXPECT_EQ((*answer)[u"blocked"].toString(), u"0000000000000000"_s);
    EXPECT_LE((*answer)[u"files"].toInt(), 1);  // the folder that the shell lists
}

}  // namespace
