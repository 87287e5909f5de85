#include <gtest/gtest.h>

#include <csignal>
#include <thread>

#include "platform/linux/UnnamedFile.h"
#include "platform/linux/WorkerProcess.h"
#include "support/Environment.h"
#include "support/TestFolder.h"

using namespace Qt::StringLiterals;

namespace {

constexpr std::chrono::seconds kLong(20);
constexpr std::chrono::milliseconds kShort(300);

/// A worker that is a shell script.
struct Script : TestFolder {
    explicit Script(const QByteArray& commands) {
        const QByteArray file = write("worker", "#!/bin/sh\n" + commands + '\n');
        std::filesystem::permissions(file.toStdString(), std::filesystem::perms::owner_all);
    }
    const QString program = QString::fromUtf8(path("worker"));
};

TEST(WorkerProcess, AnswersOrNot) {
    const QByteArray most(Worker::kMaxBytes, 'x');
    const struct {
        const char* commands;
        std::optional<QJsonObject> answer;
        QByteArray source = "it\n";
        std::chrono::milliseconds patience = kLong;
    } cases[] = {
        {R"(echo noise >&2; sleep 0.1; printf '{"a"'; sleep 0.1; printf ':1}')", QJsonObject{{u"a"_s, 1}}},
        {"", {}},
        {"echo garbage", {}},
        {"echo '[1]'", {}},
        {R"(echo '{"a": 1}'; exit 1)", {}},
        {R"(echo '{"a": 1}'; kill -SEGV $$)", {}},
        {"yes", {}},
        {"printf '{\"a\": \"%02000000d\"}' 0", {}},
        {R"(test ! -e /proc/self/fd/3 && head -c 9 | { read -r line; printf '{"a": "%s"}' "$line"; })",
         QJsonObject{{u"a"_s, u"it"_s}}},
        {R"(printf '{"a": %d}' $(wc -c))", QJsonObject{{u"a"_s, most.size()}}, most},
        {"echo '{}'", QJsonObject(), most},
        {"echo '{}'", {}, most + 'x'},
        {"exec sleep 1000", {}, most, kShort},
        {R"(echo '{"a": 1}'; exec >&-; exec sleep 1000)", {}, "", kShort},
        {R"(trap '' TERM INT HUP; while :; do sleep 1; done)", {}, "", kShort},
    };
    for (const auto& [commands, answer, source, patience] : cases)
        EXPECT_EQ(WorkerProcess(Script(commands).program, patience).run({}, source), answer) << commands;
    EXPECT_FALSE(WorkerProcess(u"/no/such/worker"_s).run({}, QByteArray()));
    EXPECT_FALSE(WorkerProcess(Script("echo '{}'").program).run({}, -1, nullptr));
}

TEST(WorkerProcess, PassesWordsAndTheResultAndNothingElse) {
    // The worker must not inherit what the caller's thread blocks, nor its files and secrets. It hangs in the end.
    const Script script(R"raw(
        n=$# last=$3
        set -- /proc/$$/fd/[4-9]
        blocked=$(awk '/^SigBlk|^SigIgn/ { print $2 }' /proc/self/status)
        echo $$ $n "$last" $# $blocked "[$SECRET]" >&3
        exec sleep 1000)raw");
    const EnvironmentVariable secret("SECRET", "secret");
    const auto result = UnnamedFile::in(script.path());
    std::thread([&] {
        sigset_t all;
        ::sigfillset(&all);
        ::pthread_sigmask(SIG_BLOCK, &all, nullptr);
        std::signal(SIGUSR1, SIG_IGN);
        const Descriptor source = fileInMemory({});
        const QStringList words{u"a b"_s, QString(), u"$HOME;ü"_s};
        EXPECT_FALSE(WorkerProcess(script.program, kShort).run(words, source.get(), result.get()));
        std::signal(SIGUSR1, SIG_DFL);
    }).join();
    QByteArray told(200, '\0');
    told.truncate(::pread(result->descriptor(), told.data(), size_t(told.size()), 0));
    // The one file may be the folder that the shell lists.
    const QByteArray id = told.left(told.indexOf(' '));
    told.replace(" 0 0000", " 1 0000");
    EXPECT_EQ(told.toStdString(), id.toStdString() + " 3 $HOME;\u00fc 1 0000000000000000 0000000000000000 []\n");
    EXPECT_EQ(::kill(id.toInt(), 0), -1) << "no process is left behind";
    EXPECT_EQ(errno, ESRCH);
}

}  // namespace
