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

#include "platform/Descriptor.h"
#include "platform/linux/UnnamedFile.h"

namespace {

using Clock = std::chrono::steady_clock;

constexpr qsizetype kLongestAnswer = 1 << 20;  // bytes; a page of text is some thousand
constexpr std::chrono::seconds kDying(1);
constexpr int kResult = 3;

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

/// What of the environment concerns it: where its libraries are, and which language to read.
constexpr const char* kVariables[] = {"LANG",         "LANGUAGE",        "LC_ALL",          "LC_CTYPE",
                                      "LC_MESSAGES",  "TESSDATA_PREFIX", "LD_LIBRARY_PATH", "PATH",
                                      "ASAN_OPTIONS", "LSAN_OPTIONS",    "UBSAN_OPTIONS"};

std::vector<QByteArray> environment() {
    std::vector<QByteArray> variables;
    for (const char* name : kVariables)
        if (qEnvironmentVariableIsSet(name)) variables.push_back(QByteArray(name) + '=' + qgetenv(name));
    return variables;
}

/// As a program is told its arguments. The words must outlive it.
std::vector<char*> pointersTo(std::vector<QByteArray>& words) {
    std::vector<char*> pointers;
    pointers.reserve(words.size() + 1);
    for (QByteArray& word : words) pointers.push_back(word.data());
    pointers.push_back(nullptr);
    return pointers;
}

/// A copy that is none of the numbers which it will have in the program. None if there is no such descriptor.
Descriptor outOfTheWay(int descriptor) {
    return Descriptor(::fcntl(descriptor, F_DUPFD_CLOEXEC, kResult + 1));
}

/// A program that runs, its standard output to be read here and all its other ways out closed but for the result. It
/// ends with this object.
class Process {
 public:
    Process(const QByteArray& program, const QStringList& arguments, int source, int result);
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

Process::Process(const QByteArray& program, const QStringList& arguments, int source, int result) {
    std::vector<QByteArray> words{program};
    words.reserve(size_t(arguments.size()) + 1);
    for (const QString& argument : arguments) words.push_back(argument.toUtf8());
    std::vector<QByteArray> variables = environment();

    std::array<int, 2> pipe{};
    if (::pipe2(pipe.data(), O_CLOEXEC) != 0) return;
    output_ = pipe[0];
    const Descriptor pipeEnd(pipe[1]);
    const Descriptor output = outOfTheWay(pipeEnd.get()), input = outOfTheWay(source), made = outOfTheWay(result);
    if (!output || !input) return;
    posix_spawn_file_actions_t files;
    ::posix_spawn_file_actions_init(&files);
    ::posix_spawn_file_actions_adddup2(&files, input.get(), STDIN_FILENO);
    ::posix_spawn_file_actions_adddup2(&files, output.get(), STDOUT_FILENO);
    ::posix_spawn_file_actions_addopen(&files, STDERR_FILENO, "/dev/null", O_WRONLY, 0);
    if (made) ::posix_spawn_file_actions_adddup2(&files, made.get(), kResult);
    ::posix_spawn_file_actions_addclosefrom_np(&files, made ? kResult + 1 : kResult);
    // What this thread blocks or ignores is none of its business.
    posix_spawnattr_t attributes;
    ::posix_spawnattr_init(&attributes);
    sigset_t signals;
    ::sigemptyset(&signals);
    ::posix_spawnattr_setsigmask(&attributes, &signals);
    ::sigfillset(&signals);
    ::posix_spawnattr_setsigdefault(&attributes, &signals);
    ::posix_spawnattr_setflags(&attributes, POSIX_SPAWN_SETSIGMASK | POSIX_SPAWN_SETSIGDEF);
    const int error = ::posix_spawn(&id_, program.constData(), &files, &attributes, pointersTo(words).data(),
                                    pointersTo(variables).data());
    if (error != 0) id_ = -1;
    ::posix_spawnattr_destroy(&attributes);
    ::posix_spawn_file_actions_destroy(&files);
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

std::unique_ptr<ResultFile> WorkerProcess::resultIn(const QByteArray& folder) {
    return UnnamedFile::in(folder);
}

std::optional<QJsonObject> WorkerProcess::run(const QStringList& request, int source, const ResultFile* result) {
    Process process(program_, request, source, result ? result->descriptor() : -1);
    const auto output = process.output(Clock::now() + patience_);
    if (!output) return {};
    const auto answer = QJsonDocument::fromJson(*output);
    if (!answer.isObject()) return {};
    return answer.object();
}
