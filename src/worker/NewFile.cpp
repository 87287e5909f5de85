#include "worker/NewFile.h"

#include <fcntl.h>
#include <sys/mman.h>
#include <sys/random.h>
#include <sys/sendfile.h>
#include <sys/stat.h>

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <cstdio>

namespace {

using Clock = std::chrono::steady_clock;

constexpr mode_t kMode = 0666;  // less what the user's mask takes away
constexpr qsizetype kLongestName = 255;
constexpr size_t kChunk = 1 << 20;

/// When alarm() would have ended the process. From here on it does not: a file with a name has to be removed first.
Clock::time_point takeOverAlarm() {
    const unsigned seconds = ::alarm(0);
    return seconds == 0 ? Clock::time_point::max() : Clock::now() + std::chrono::seconds(seconds);
}

bool copyAll(int from, int to, Clock::time_point deadline) {
    off_t done = 0;
    for (;;) {
        const ssize_t n = ::sendfile(to, from, &done, kChunk);
        if (n < 0 && errno == EINTR) continue;
        if (n <= 0) return n == 0;
        if (Clock::now() > deadline) return false;
    }
}

QByteArray newHiddenName() {
    quint64 number = 0;
    if (::getrandom(&number, sizeof number, 0) != sizeof number) return {};
    return ".chewing-" + QByteArray::number(number, 36);
}

}  // namespace

std::optional<NewFile> NewFile::in(const QByteArray& folder) {
    Descriptor directory(::open(folder.constData(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    if (!directory) return {};
    Descriptor file(::openat(directory.get(), ".", O_TMPFILE | O_RDWR | O_CLOEXEC, kMode));
    if (file) return NewFile(std::move(directory), std::move(file), true);
    if (errno != EOPNOTSUPP && errno != EISDIR && errno != EINVAL) return {};
    if (::faccessat(directory.get(), ".", W_OK | X_OK, AT_EACCESS) != 0) return {};
    Descriptor memory(::memfd_create("chewing", MFD_CLOEXEC));
    if (!memory) return {};
    return NewFile(std::move(directory), std::move(memory), false);
}

NewFile::~NewFile() {
    if (!hiddenName_.isEmpty()) ::unlinkat(folder_.get(), hiddenName_.constData(), 0);
}

bool NewFile::finish() {
    if (isInFolder_) return ::fsync(file_.get()) == 0;
    const auto deadline = takeOverAlarm();
    const QByteArray hidden = newHiddenName();
    const Descriptor copy(
        ::openat(folder_.get(), hidden.constData(), O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, kMode));
    if (!copy) return false;
    hiddenName_ = hidden;
    return copyAll(file_.get(), copy.get(), deadline) && ::fsync(copy.get()) == 0;
}

NewFile::Naming NewFile::name(const QByteArray& fileName) {
    const Naming naming = isInFolder_ ? link(fileName) : rename(fileName);
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
        const Descriptor ours(::openat(folder, fileName.constData(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, kMode));
        if (!ours) return errno == EEXIST ? Naming::taken : Naming::failed;
        if (::renameat(folder, hiddenName_.constData(), folder, fileName.constData()) != 0) {
            ::unlinkat(folder, fileName.constData(), 0);
            return Naming::failed;
        }
    }
    hiddenName_.clear();
    return Naming::done;
}

qsizetype NewFile::longestName() const {
    const long longest = ::fpathconf(folder_.get(), _PC_NAME_MAX);
    return longest > 0 ? std::min<qsizetype>(longest, kLongestName) : kLongestName;
}
