#include "platform/linux/WorkerProcess.h"

#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <spawn.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

#include <QJsonDocument>
#include <algorithm>
#include <array>
#include <cerrno>
#include <vector>

namespace {

using Clock = std::chrono::steady_clock;

constexpr qsizetype kLongestAnswer = 16 << 20;  // bytes; a page of text is some thousand
constexpr std::chrono::seconds kDying(1);

/// Waits until there is something to read, or the other side is closed. False when it gets too late.
bool waitFor(int descriptor, Clock::time_point deadline) {
    for (;;) {
        const auto left = std::chrono::ceil<std::chrono::milliseconds>(deadline - Clock::now());
        if (left.count() <= 0) return false;
        pollfd readable{descriptor, POLLIN, 0};
        const int ready = ::poll(&readable, 1, int(left.count()));
        if (ready > 0) return true;
        if (ready < 0 && errno != EINTR) return false;
    }
}

/// A program that runs, its standard output to be read here and all its other ways out closed. It ends with this
/// object.
class Process {
 public:
    Process(const QByteArray& program, const QStringList& arguments);
    ~Process();
    Process(const Process&) = delete;
    Process& operator=(const Process&) = delete;

    /// All that it wrote, when it has ended well; absent when it does not run, fails, writes too much or takes too
    /// long.
    std::optional<QByteArray> output(Clock::time_point deadline);

 private:
    bool readAll(QByteArray& output, Clock::time_point deadline) const;

    pid_t id_ = -1;
    int ended_ = -1;  // readable when it has
    int output_ = -1;
};

Process::Process(const QByteArray& program, const QStringList& arguments) {
    std::vector<QByteArray> words{program};
    words.reserve(size_t(arguments.size()) + 1);
    for (const QString& argument : arguments) words.push_back(argument.toUtf8());
    std::vector<char*> argv;
    argv.reserve(words.size() + 1);
    for (QByteArray& word : words) argv.push_back(word.data());
    argv.push_back(nullptr);

    std::array<int, 2> pipe{};
    if (::pipe2(pipe.data(), O_CLOEXEC) != 0) return;
    output_ = pipe[0];
    posix_spawn_file_actions_t files;
    ::posix_spawn_file_actions_init(&files);
    ::posix_spawn_file_actions_addopen(&files, STDIN_FILENO, "/dev/null", O_RDONLY, 0);
    ::posix_spawn_file_actions_adddup2(&files, pipe[1], STDOUT_FILENO);
    ::posix_spawn_file_actions_addopen(&files, STDERR_FILENO, "/dev/null", O_WRONLY, 0);
    ::posix_spawn_file_actions_addclosefrom_np(&files, STDERR_FILENO + 1);
    // What this thread blocks or ignores is none of its business.
    posix_spawnattr_t attributes;
    ::posix_spawnattr_init(&attributes);
    sigset_t signals;
    ::sigemptyset(&signals);
    ::posix_spawnattr_setsigmask(&attributes, &signals);
    ::sigfillset(&signals);
    ::posix_spawnattr_setsigdefault(&attributes, &signals);
    ::posix_spawnattr_setflags(&attributes, POSIX_SPAWN_SETSIGMASK | POSIX_SPAWN_SETSIGDEF);
    if (::posix_spawn(&id_, program.constData(), &files, &attributes, argv.data(), environ) != 0) id_ = -1;
    ::posix_spawnattr_destroy(&attributes);
    ::posix_spawn_file_actions_destroy(&files);
    ::close(pipe[1]);
    if (id_ > 0) ended_ = int(::syscall(SYS_pidfd_open, id_, 0));
}

Process::~Process() {
    if (id_ > 0) {
        ::kill(id_, SIGKILL);
        // One that waits for a dead disk does not die; then it is left behind rather than waited for.
        const bool isDead = waitFor(ended_, Clock::now() + kDying);
        ::waitpid(id_, nullptr, isDead ? 0 : WNOHANG);
    }
    for (const int descriptor : {ended_, output_})
        if (descriptor >= 0) ::close(descriptor);
}

bool Process::readAll(QByteArray& output, Clock::time_point deadline) const {
    std::array<char, 1 << 16> chunk;
    while (output.size() <= kLongestAnswer) {
        if (!waitFor(output_, deadline)) return false;
        const ssize_t n = ::read(output_, chunk.data(), chunk.size());
        if (n < 0 && errno == EINTR) continue;
        if (n <= 0) return n == 0;
        output.append(chunk.data(), n);
    }
    return false;
}

std::optional<QByteArray> Process::output(Clock::time_point deadline) {
    QByteArray output;
    if (id_ <= 0 || !readAll(output, deadline) || !waitFor(ended_, deadline)) return {};
    int status = 0;
    const bool isReaped = ::waitpid(id_, &status, 0) == id_;
    id_ = -1;
    if (!isReaped || !WIFEXITED(status) || WEXITSTATUS(status) != 0) return {};
    return output;
}

}  // namespace

std::optional<QJsonObject> WorkerProcess::run(const QStringList& request) {
    const auto output = Process(program_, request).output(Clock::now() + patience_);
    if (!output) return {};
    const auto answer = QJsonDocument::fromJson(*output);
    if (!answer.isObject()) return {};
    return answer.object();
}
