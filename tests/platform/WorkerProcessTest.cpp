#include <gtest/gtest.h>
#include <signal.h>
#include <sys/stat.h>

#include <QFile>
#include <QTemporaryDir>
#include <array>
#include <thread>

#include "platform/Descriptor.h"
#include "platform/linux/UnnamedFile.h"
#include "platform/linux/WorkerProcess.h"
#include "support/Environment.h"

using namespace Qt::StringLiterals;

namespace {

constexpr std::chrono::seconds kLong(20);
constexpr std::chrono::milliseconds kShort(300);

/// A worker that is a shell script, and a file that it can read.
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
    std::optional<QJsonObject> run(std::chrono::milliseconds patience = kLong, const QStringList& request = {},
                                   const ResultFile* result = nullptr) const {
        const Descriptor source = openRegularFile(path);
        return WorkerProcess(path, patience).run(request, source.get(), result);
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
        {"printf '{\"a\": \"%02000000d\"}' 0", kLong, {}},
        {R"(test ! -e /proc/self/fd/3 && head -c 9 | { read -r line; printf '{"a": "%s"}' "$line"; })", kLong,
         QJsonObject{{u"a"_s, u"#!/bin/sh"_s}}},
        {"exec sleep 1000", kShort, {}},
        {R"(echo '{"a": 1}'; exec >&-; exec sleep 1000)", kShort, {}},
        {R"(trap '' TERM INT HUP; while :; do sleep 1; done)", kShort, {}},
    };
    for (const auto& [commands, patience, answer] : cases)
        EXPECT_EQ(Script(commands).run(patience), answer) << commands;
    EXPECT_FALSE(WorkerProcess("/no/such/worker").run({}, STDIN_FILENO, nullptr));
    EXPECT_FALSE(WorkerProcess(Script("echo '{}'").path).run({}, -1, nullptr));
}

TEST(WorkerProcess, LeavesNoProcessBehind) {
    const Script script(R"(echo $$ > "$1"; exec sleep 1000)");
    const QString path = script.folder.filePath(u"id"_s);
    EXPECT_FALSE(script.run(kShort, {path}));
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    const int id = file.readAll().trimmed().toInt();
    ASSERT_GT(id, 1);
    EXPECT_EQ(::kill(id, 0), -1);
    EXPECT_EQ(errno, ESRCH);
}

TEST(WorkerProcess, PassesWordsAndTheResultAndNothingElse) {
    // The worker must not inherit what the caller's thread blocks, nor its files and secrets.
    const Script script(R"raw(
        printf made >&3
        n=$# last=$3
        set -- /proc/$$/fd/[4-9]
        blocked=$(awk '/^SigBlk/ { print $2 }' /proc/self/status)
        printf '{"n": %d, "last": "%s", "files": %d, "blocked": "%s%s"}' $n "$last" "$#" "$blocked" "$SECRET")raw");
    const EnvironmentVariable secret("SECRET", "secret");
    const auto result = UnnamedFile::in(QFile::encodeName(script.folder.path()));
    std::optional<QJsonObject> answer;
    std::thread([&] {
        sigset_t all;
        ::sigfillset(&all);
        ::pthread_sigmask(SIG_BLOCK, &all, nullptr);
        answer = script.run(kLong, {u"a b"_s, QString(), u"$HOME *;ü"_s}, result.get());
    }).join();
    // The one file may be the folder that the shell lists.
    ASSERT_TRUE(answer);
    EXPECT_LE((*answer)[u"files"].toInt(), 1);
    answer->remove(u"files"_s);
    EXPECT_EQ(answer, (QJsonObject{{u"n"_s, 3}, {u"last"_s, u"$HOME *;ü"_s}, {u"blocked"_s, u"0000000000000000"_s}}));
    std::array<char, 5> bytes{};
    EXPECT_EQ(::pread(result->descriptor(), bytes.data(), bytes.size(), 0), 4);
    EXPECT_STREQ(bytes.data(), "made");
}

}  // namespace
