#include "platform/linux/UnnamedFile.h"

#include <fcntl.h>
#include <sys/random.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <climits>
#include <csignal>
#include <cstdio>

namespace {

constexpr mode_t kMode = 0666;  // minus the umask
constexpr qsizetype kMaxName = 255;

QByteArray newHiddenName() {
    quint64 number = 0;
    if (::getrandom(&number, sizeof number, 0) != sizeof number) return {};
    return ".chewing-" + QByteArray::number(number, 36);
}

/// Runs in a forked process: waits until the other end of `lifeline` is closed, however its owner ends, and removes the
/// file. Uses system calls only, because locks held by other threads stay locked after a fork.
[[noreturn]] void removeAtTheEnd(int lifeline, int folder, const char* name) {
    sigset_t all;
    ::sigfillset(&all);
    ::sigprocmask(SIG_SETMASK, &all, nullptr);
    // Do not keep our standard output open: its reader would wait for this process.
    ::dup2(lifeline, STDIN_FILENO);
    ::dup2(folder, STDOUT_FILENO);
    ::close_range(STDERR_FILENO, ~0U, 0);
    char nothing = 0;
    while (::read(STDIN_FILENO, &nothing, 1) > 0) continue;
    ::unlinkat(STDOUT_FILENO, name, 0);
    ::_exit(0);
}

}  // namespace

std::unique_ptr<UnnamedFile> UnnamedFile::in(const QByteArray& folder) {
    std::unique_ptr<UnnamedFile> file(
        new UnnamedFile(Descriptor(::open(folder.constData(), O_RDONLY | O_DIRECTORY | O_CLOEXEC))));
    if (file->folder_ && file->open()) return file;
    const int why = errno;
    file.reset();
    errno = why;
    return {};
}

bool UnnamedFile::open() {
    file_ = Descriptor(::openat(folder_.get(), ".", O_TMPFILE | O_RDWR | O_CLOEXEC, kMode));
    if (file_) return true;
    return (errno == EOPNOTSUPP || errno == EISDIR || errno == EINVAL) && openHidden();
}

bool UnnamedFile::openHidden() {
    const QByteArray name = newHiddenName();
    std::array<int, 2> ends{};
    if (name.isEmpty() || ::pipe2(ends.data(), O_CLOEXEC) != 0) return false;
    const Descriptor theirs(ends[0]);
    lifeline_ = Descriptor(ends[1]);
    remover_ = ::_Fork();
    if (remover_ == 0) removeAtTheEnd(theirs.get(), folder_.get(), name.constData());
    if (remover_ < 0) return false;
    hiddenName_ = name;
    file_ = Descriptor(
        ::openat(folder_.get(), name.constData(), O_RDWR | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, kMode));
    return bool(file_);
}

UnnamedFile::~UnnamedFile() {
    if (!lifeline_) return;
    lifeline_ = Descriptor();
    if (remover_ > 0) ::waitpid(remover_, nullptr, 0);
}

bool UnnamedFile::finish() {
    return ::fsync(file_.get()) == 0;
}

UnnamedFile::Naming UnnamedFile::name(const QByteArray& fileName) {
    const Naming naming = hiddenName_.isEmpty() ? link(fileName) : rename(fileName);
    // The name is durable only once the folder is flushed. Errors are ignored: some file systems do not support this.
    if (naming == Naming::done) ::fsync(folder_.get());
    return naming;
}

UnnamedFile::Naming UnnamedFile::link(const QByteArray& fileName) {
    const QByteArray self = "/proc/self/fd/" + QByteArray::number(file_.get());
    if (::linkat(AT_FDCWD, self.constData(), folder_.get(), fileName.constData(), AT_SYMLINK_FOLLOW) == 0)
        return Naming::done;
    return errno == EEXIST ? Naming::taken : Naming::failed;
}

UnnamedFile::Naming UnnamedFile::rename(const QByteArray& fileName) {
    const int folder = folder_.get();
    if (::renameat2(folder, hiddenName_.constData(), folder, fileName.constData(), RENAME_NOREPLACE) != 0) {
        if (errno == EEXIST) return Naming::taken;
        if (errno != EINVAL && errno != ENOSYS) return Naming::failed;
        // Without RENAME_NOREPLACE, reserve the name with an empty file and replace that.
        const Descriptor ours(::openat(folder, fileName.constData(), O_RDONLY | O_CREAT | O_EXCL | O_CLOEXEC, kMode));
        if (!ours) return errno == EEXIST ? Naming::taken : Naming::failed;
        if (::renameat(folder, hiddenName_.constData(), folder, fileName.constData()) != 0) {
            ::unlinkat(folder, fileName.constData(), 0);
            return Naming::failed;
        }
    }
    return Naming::done;
}

QByteArray UnnamedFile::folder() const {
    const QByteArray self = "/proc/self/fd/" + QByteArray::number(folder_.get());
    QByteArray path(PATH_MAX, '\0');
    path.truncate(std::max<qsizetype>(::readlink(self.constData(), path.data(), size_t(path.size())), 0));
    return path;
}

qsizetype UnnamedFile::maxNameLength() const {
    const long longest = ::fpathconf(folder_.get(), _PC_NAME_MAX);
    return longest > 0 ? std::min<qsizetype>(longest, kMaxName) : kMaxName;
}
