#include "platform/linux/WorkerProcess.h"

#include <fcntl.h>
#include <linux/close_range.h>
#include <unistd.h>

#include <QDeadlineTimer>
#include <QJsonDocument>
#include <QProcess>
#include <csignal>

#include "platform/linux/UnnamedFile.h"

namespace {

constexpr qsizetype kMaxAnswer = 1 << 20;  // bytes; a page of text has a few thousand
constexpr int kKillTimeout = 1000;         // ms
constexpr int kResult = 3;

QProcessEnvironment environment() {
    static const QStringList kPassed{
        QStringLiteral("LANG"),         QStringLiteral("LANGUAGE"),        QStringLiteral("LC_ALL"),
        QStringLiteral("LC_CTYPE"),     QStringLiteral("LC_MESSAGES"),     QStringLiteral("TESSDATA_PREFIX"),
        QStringLiteral("PATH"),         QStringLiteral("LD_LIBRARY_PATH"), QStringLiteral("ASAN_OPTIONS"),
        QStringLiteral("LSAN_OPTIONS"), QStringLiteral("UBSAN_OPTIONS")};
    auto variables = QProcessEnvironment::systemEnvironment();
    for (const QString& name : variables.keys())
        if (!kPassed.contains(name)) variables.remove(name);
    return variables;
}

/// Runs in the child process before exec. Uses system calls only, because locks held by other threads stay locked after
/// a fork.
void passOnly(int source, int result) {
    if (::dup2(source, STDIN_FILENO) < 0) ::_exit(EXIT_FAILURE);
    if (result >= 0 && result != kResult) ::dup2(result, kResult);
    // Close-on-exec rather than closed: Qt uses one of them to report that exec failed.
    ::close_range(kResult, ~0U, CLOSE_RANGE_CLOEXEC);
    if (result >= 0) ::fcntl(kResult, F_SETFD, 0);
    // Do not inherit blocked or ignored signals.
    for (int number = 1; number < NSIG; ++number) std::signal(number, SIG_DFL);
    sigset_t none;
    ::sigemptyset(&none);
    ::sigprocmask(SIG_SETMASK, &none, nullptr);
}

/// Everything that the process writes; absent if it fails, writes too much or takes too long.
std::optional<QByteArray> outputOf(QProcess& process, QDeadlineTimer deadline) {
    if (!process.waitForStarted(int(deadline.remainingTime()))) return {};
    QByteArray output;
    while (output.size() <= kMaxAnswer && process.waitForReadyRead(int(deadline.remainingTime())))
        output += process.readAll();
    if (process.state() != QProcess::NotRunning) return {};
    output += process.readAll();
    if (process.exitStatus() != QProcess::NormalExit || process.exitCode() != 0 || output.size() > kMaxAnswer)
        return {};
    return output;
}

}  // namespace

std::unique_ptr<ResultFile> WorkerProcess::resultIn(const QByteArray& folder) {
    return UnnamedFile::in(folder);
}

std::optional<QJsonObject> WorkerProcess::run(const QStringList& request, int source, const ResultFile* result) {
    auto process = std::make_unique<QProcess>();
    process->setProcessEnvironment(environment());
    process->setInputChannelMode(QProcess::ForwardedInputChannel);
    process->setStandardErrorFile(QProcess::nullDevice());
    process->setChildProcessModifier([source, made = result ? result->descriptor() : -1] { passOnly(source, made); });
    process->start(program_, request, QIODevice::ReadOnly);
    const auto output = outputOf(*process, QDeadlineTimer(timeout_));
    process->kill();
    // A process that is blocked on a hung disk cannot be killed. QProcess's destructor would wait for it, so leak both.
    if (!process->waitForFinished(kKillTimeout) && process->state() != QProcess::NotRunning) (void)process.release();
    if (!output) return {};
    const auto answer = QJsonDocument::fromJson(*output);
    if (!answer.isObject()) return {};
    return answer.object();
}
