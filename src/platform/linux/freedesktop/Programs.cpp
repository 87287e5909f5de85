#include "platform/linux/freedesktop/Programs.h"

#include <linux/close_range.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <QFile>
#include <QStandardPaths>
#include <vector>

#include "platform/Descriptor.h"

namespace {

// Both run in a forked child, where locks of other threads stay locked, so nothing here may allocate or lock.

[[noreturn]] void become(char* const* arguments, int failure) {
    setsid();
    sigset_t none;
    sigemptyset(&none);
    sigprocmask(SIG_SETMASK, &none, nullptr);
    for (int number = 1; number < NSIG; ++number) signal(number, SIG_DFL);
    const int nothing = open("/dev/null", O_RDWR);
    for (int standard : {0, 1, 2}) dup2(nothing, standard);
    close_range(3, ~0U, CLOSE_RANGE_CLOEXEC);
    execv(arguments[0], arguments);
    const char failed = 1;
    [[maybe_unused]] const ssize_t told = write(failure, &failed, 1);
    _exit(1);
}

/// Double fork: the program is the child of a process that exits at once, so we do not have to reap it.
[[noreturn]] void becomeParentOf(char* const* arguments, int failure) {
    const pid_t child = fork();
    if (child == 0) become(arguments, failure);
    _exit(child < 0 ? 1 : 0);
}

}  // namespace

bool startProgram(const QList<QByteArray>& command) {
    const QByteArray path = QFile::encodeName(QStandardPaths::findExecutable(QFile::decodeName(command.first())));
    if (path.isEmpty()) return false;
    QList<QByteArray> words = command;
    words.first() = path;
    std::vector<char*> arguments;
    for (QByteArray& word : words) arguments.push_back(word.data());
    arguments.push_back(nullptr);

    // Closed by a successful exec, otherwise written to.
    int ends[2];
    if (pipe2(ends, O_CLOEXEC) != 0) return false;
    const Descriptor failure(ends[0]);
    Descriptor theirs(ends[1]);
    const pid_t child = fork();
    if (child == 0) becomeParentOf(arguments.data(), theirs.get());
    theirs = Descriptor();
    int status = -1;
    if (child > 0) {
        while (waitpid(child, &status, 0) < 0 && errno == EINTR) continue;
    }
    return status == 0 && readUpTo(failure.get(), 1) == QByteArray();
}
