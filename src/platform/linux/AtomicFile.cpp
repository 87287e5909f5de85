#include "platform/linux/AtomicFile.h"

#include <dirent.h>
#include <fcntl.h>
#include <signal.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <cerrno>
#include <cstdio>
#include <memory>

#include "platform/Descriptor.h"

namespace {

constexpr int kMostLinks = 40;    // as many as the kernel follows
constexpr int kMostAside = 1000;  // unreadable files beside each other
const QByteArray kTemporary = ".new-";

bool exists(const QByteArray& path) {
    struct stat status = {};
    return ::lstat(path.constData(), &status) == 0;
}

/// Readable by its owner only where it has to be made.
bool makeFolder(const QByteArray& folder) {
    const QString name = QFile::decodeName(folder);
    if (QFileInfo::exists(name)) return true;
    return QDir().mkpath(name) && ::chmod(folder.constData(), 0700) == 0;
}

bool writeAll(int fd, const QByteArray& contents) {
    qsizetype done = 0;
    while (done < contents.size()) {
        const ssize_t n = ::write(fd, contents.constData() + done, size_t(contents.size() - done));
        if (n < 0 && errno == EINTR) continue;
        if (n <= 0) return false;
        done += n;
    }
    return true;
}

}  // namespace

AtomicFile::AtomicFile(const QString& path) {
    QFileInfo file(path);
    for (int i = 0; i < kMostLinks && file.isSymLink(); ++i) file.setFile(file.symLinkTarget());
    path_ = QFile::encodeName(file.absoluteFilePath());
    folder_ = path_.left(path_.lastIndexOf('/'));
}

AtomicFile::~AtomicFile() {
    if (lock_ < 0) return;
    // Not left to the closing, which does not end a lock while a child that has not started its program shares it.
    ::flock(lock_, LOCK_UN);
    ::close(lock_);
}

bool AtomicFile::keep() {
    makeFolder(folder_);
    lock_ = ::open((path_ + ".lock").constData(), O_RDWR | O_CREAT | O_NOFOLLOW | O_CLOEXEC, 0600);
    // In a folder that cannot be written the folder itself does as well.
    if (lock_ < 0) lock_ = ::open(folder_.constData(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (lock_ >= 0 && ::flock(lock_, LOCK_EX | LOCK_NB) != 0 && errno == EWOULDBLOCK) return false;
    removeLeftovers();
    return true;
}

void AtomicFile::removeLeftovers() const {
    const std::unique_ptr<DIR, int (*)(DIR*)> directory(::opendir(folder_.constData()), &::closedir);
    const QByteArray prefix = path_.mid(folder_.size() + 1) + kTemporary;
    while (const dirent* entry = directory ? ::readdir(directory.get()) : nullptr) {
        const QByteArray name = entry->d_name;
        bool number = false;
        const int process = name.mid(prefix.size()).toInt(&number);
        if (!name.startsWith(prefix) || !number || process <= 0) continue;
        if (process != ::getpid() && (::kill(process, 0) == 0 || errno != ESRCH)) continue;
        struct stat status = {};
        const bool found = ::fstatat(::dirfd(directory.get()), entry->d_name, &status, AT_SYMLINK_NOFOLLOW) == 0;
        if (found && S_ISREG(status.st_mode) && status.st_uid == ::geteuid())
            ::unlinkat(::dirfd(directory.get()), entry->d_name, 0);
    }
}

std::optional<QByteArray> AtomicFile::read(qint64 largest) {
    struct stat status = {};
    if (::lstat(path_.constData(), &status) != 0) return {};
    keepAside_ = true;
    // Not to be held up by a pipe or a device in its place.
    const Descriptor file(::open(path_.constData(), O_RDONLY | O_NONBLOCK | O_CLOEXEC));
    if (!file || ::fstat(file.get(), &status) != 0 || !S_ISREG(status.st_mode) || status.st_size > largest) return {};
    QByteArray contents(qsizetype(status.st_size), '\0');
    qsizetype got = 0;
    while (got < contents.size()) {
        const ssize_t n = ::read(file.get(), contents.data() + got, size_t(contents.size() - got));
        if (n < 0 && errno == EINTR) continue;
        if (n < 0) return {};
        if (n == 0) break;
        got += n;
    }
    contents.truncate(got);
    keepAside_ = false;
    return contents;
}

bool AtomicFile::writeTemporary(const QByteArray& name, const QByteArray& contents) const {
    ::unlink(name.constData());
    const Descriptor file(::open(name.constData(), O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, 0600));
    return file && writeAll(file.get(), contents) && ::fsync(file.get()) == 0;
}

// Under a free name: what was moved aside before stays, too.
bool AtomicFile::moveAside() const {
    for (int counter = 1; counter <= kMostAside; ++counter) {
        const QByteArray name =
            path_ + ".unreadable" + (counter == 1 ? QByteArray() : '-' + QByteArray::number(counter));
        if (::renameat2(AT_FDCWD, path_.constData(), AT_FDCWD, name.constData(), RENAME_NOREPLACE) == 0) return true;
        if (errno == ENOENT) return true;  // somebody has taken it away
        if (errno == EEXIST) continue;
        // Some file systems cannot promise to replace nothing.
        if (errno != EINVAL && errno != ENOSYS) return false;
        if (!exists(name)) return std::rename(path_.constData(), name.constData()) == 0;
    }
    return false;
}

bool AtomicFile::replace(const QByteArray& contents) {
    if (!makeFolder(folder_)) return false;
    // A name of this process's own: two programs that write at once must not rename each other's half-written file.
    const QByteArray temporary = path_ + kTemporary + QByteArray::number(::getpid());
    const bool ready = writeTemporary(temporary, contents) && (!keepAside_ || moveAside());
    if (ready) keepAside_ = false;
    if (!ready || std::rename(temporary.constData(), path_.constData()) != 0) {
        ::unlink(temporary.constData());
        return false;
    }
    // The new name is safe only once the folder is.
    const Descriptor directory(::open(folder_.constData(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    return directory && ::fsync(directory.get()) == 0;
}
