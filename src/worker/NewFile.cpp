#include "worker/NewFile.h"

#include <fcntl.h>
#include <sys/random.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <csignal>
#include <cstdio>

namespace {

constexpr mode_t kMode = 0666;  // less what the user's mask takes away
constexpr qsizetype kLongestName = 255;

QByteArray newHiddenName() {
    quint64 number = 0;
    if (::getrandom(&number, sizeof number, 0) != sizeof number) return {};
    return ".chewing-" + QByteArray::number(number, 36);
}

/// Runs in a process of its own: waits for the other end of `lifeline` to be closed, by whatever ends its owner, and
/// removes the file. There may have been threads before the fork, so these are system calls only.
[[noreturn]] void removeAtTheEnd(int lifeline, int folder, const char* name) {
    sigset_t all;
    ::sigfillset(&all);
    ::sigprocmask(SIG_SETMASK, &all, nullptr);
    // Nobody is to wait for an end of standard output that only this process holds.
    ::dup2(lifeline, STDIN_FILENO);
    ::dup2(folder, STDOUT_FILENO);
    ::close_range(STDERR_FILENO, ~0U, 0);
    char nothing = 0;
    while (::read(STDIN_FILENO, &nothing, 1) > 0) continue;
    ::unlinkat(STDOUT_FILENO, name, 0);
    ::_exit(0);
}

}  // namespace

std::optional<NewFile> NewFile::in(const QByteArray& folder) {
    NewFile file(folder, Descriptor(::open(folder.constData(), O_RDONLY | O_DIRECTORY | O_CLOEXEC)));
    if (!file.folder_) return {};
    file.file_ = Descriptor(::openat(file.folder_.get(), ".", O_TMPFILE | O_RDWR | O_CLOEXEC, kMode));
    if (file.file_) return file;
    if (errno != EOPNOTSUPP && errno != EISDIR && errno != EINVAL) return {};
    if (!file.openHidden()) return {};
    return file;
}

bool NewFile::openHidden() {
    const QByteArray name = newHiddenName();
    std::array<int, 2> ends{};
    if (name.isEmpty() || ::pipe2(ends.data(), O_CLOEXEC) != 0) return false;
    const Descriptor theirs(ends[0]);
    lifeline_ = Descriptor(ends[1]);
    remover_ = ::fork();
    if (remover_ == 0) removeAtTheEnd(theirs.get(), folder_.get(), name.constData());
    if (remover_ < 0) return false;
    hiddenName_ = name;
    file_ = Descriptor(
        ::openat(folder_.get(), name.constData(), O_RDWR | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, kMode));
    return bool(file_);
}

NewFile::~NewFile() {
    if (!lifeline_) return;
    lifeline_ = Descriptor();
    if (remover_ > 0) ::waitpid(remover_, nullptr, 0);
}

bool NewFile::finish() {
    return ::fsync(file_.get()) == 0;
}

NewFile::Naming NewFile::name(const QByteArray& fileName) {
    const Naming naming = isHidden() ? rename(fileName) : link(fileName);
    // The name is safe only once the folder is; some file systems cannot be asked to, and need not be.
    if (naming == Naming::done) ::fsync(folder_.get());
    return naming;
}

NewFile::Naming NewFile::link(const QByteArray& fileName) {
    const QByteArray self = "/proc/self/fd/" + QByteArray::number(file_.get());
    if (::linkat(AT_FDCWD, self.constData(), folder_.get(), fileName.constData(), AT_SYMLINK_FOLLOW) == 0)
        return Naming::done;
    return errno == EEXIST ? Naming::taken : Naming::failed;
}

NewFile::Naming NewFile::rename(const QByteArray& fileName) {
    const int folder = folder_.get();
    if (::renameat2(folder, hiddenName_.constData(), folder, fileName.constData(), RENAME_NOREPLACE) != 0) {
        if (errno == EEXIST) return Naming::taken;
        if (errno != EINVAL && errno != ENOSYS) return Naming::failed;
        // A file system that always replaces gets an empty file of ours to replace.
        const Descriptor ours(::openat(folder, fileName.constData(), O_RDONLY | O_CREAT | O_EXCL | O_CLOEXEC, kMode));
        if (!ours) return errno == EEXIST ? Naming::taken : Naming::failed;
        if (::renameat(folder, hiddenName_.constData(), folder, fileName.constData()) != 0) {
            ::unlinkat(folder, fileName.constData(), 0);
            return Naming::failed;
        }
    }
    return Naming::done;
}

qsizetype NewFile::longestName() const {
    const long longest = ::fpathconf(folder_.get(), _PC_NAME_MAX);
    return longest > 0 ? std::min<qsizetype>(longest, kLongestName) : kLongestName;
}
