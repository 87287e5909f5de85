#include "platform/linux/AtomicFile.h"

#include <signal.h>
#include <sys/file.h>

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <cerrno>
#include <cstdio>

#include "platform/Directory.h"

namespace {

constexpr int kMaxLinks = 40;    // the kernel's own limit
constexpr int kMaxAside = 1000;  // unreadable files side by side
const QByteArray kTemporary = ".new-";

bool exists(const QByteArray& path) {
    struct stat status = {};
    return ::lstat(path.constData(), &status) == 0;
}

Descriptor openFolder(const QByteArray& folder) {
    return Descriptor(::open(folder.constData(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
}

/// A folder that has to be created is accessible by its owner only.
bool makeFolder(const QByteArray& folder) {
    const QString name = QFile::decodeName(folder);
    if (QFileInfo::exists(name)) return true;
    return QDir().mkpath(name) && ::chmod(folder.constData(), 0700) == 0;
}

}  // namespace

AtomicFile::AtomicFile(const QString& path) {
    QFileInfo file(path);
    for (int i = 0; i < kMaxLinks && file.isSymLink(); ++i) file.setFile(file.symLinkTarget());
    path_ = QFile::encodeName(file.absoluteFilePath());
    folder_ = path_.left(path_.lastIndexOf('/'));
}

AtomicFile::~AtomicFile() {
    // Closing is not enough: a forked child that has not called exec yet shares the lock.
    if (lock_) ::flock(lock_.get(), LOCK_UN);
}

bool AtomicFile::lock() {
    makeFolder(folder_);
    lock_ = Descriptor(::open((path_ + ".lock").constData(), O_RDWR | O_CREAT | O_NOFOLLOW | O_CLOEXEC, 0600));
    // In a read-only folder, lock the folder itself.
    if (!lock_) lock_ = openFolder(folder_);
    if (lock_ && ::flock(lock_.get(), LOCK_EX | LOCK_NB) != 0 && errno == EWOULDBLOCK) return false;
    removeLeftovers();
    return true;
}

void AtomicFile::removeLeftovers() const {
    const Descriptor directory = openFolder(folder_);
    const QByteArray prefix = path_.mid(folder_.size() + 1) + kTemporary;
    const auto remove = [&](const QByteArray& name, quint64) {
        bool number = false;
        const int process = name.mid(prefix.size()).toInt(&number);
        if (!name.startsWith(prefix) || !number || process <= 0) return true;
        if (process != ::getpid() && (::kill(process, 0) == 0 || errno != ESRCH)) return true;
        const auto status = statusOf(directory.get(), name.constData());
        if (status && S_ISREG(status->mode) && status->owner == ::geteuid())
            ::unlinkat(directory.get(), name.constData(), 0);
        return true;
    };
    if (directory) visitEntries(directory.get(), remove);
}

std::optional<QByteArray> AtomicFile::read(qint64 maxSize) {
    struct stat status = {};
    if (::lstat(path_.constData(), &status) != 0) return {};
    keepAside_ = true;
    const Descriptor file = openRegularFile(path_);
    if (!file || ::fstat(file.get(), &status) != 0 || status.st_size > maxSize) return {};
    auto contents = readUpTo(file.get(), status.st_size);
    keepAside_ = !contents;
    return contents;
}

bool AtomicFile::writeTemporary(const QByteArray& name, const QByteArray& contents) const {
    ::unlink(name.constData());
    const Descriptor file(::open(name.constData(), O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, 0600));
    return file && writeAll(file.get(), contents) && ::fsync(file.get()) == 0;
}

// Under a free name, so that files moved aside earlier stay as well.
bool AtomicFile::moveAside() const {
    for (int counter = 1; counter <= kMaxAside; ++counter) {
        const QByteArray name =
            path_ + ".unreadable" + (counter == 1 ? QByteArray() : '-' + QByteArray::number(counter));
        if (::renameat2(AT_FDCWD, path_.constData(), AT_FDCWD, name.constData(), RENAME_NOREPLACE) == 0) return true;
        if (errno == ENOENT) return true;  // removed in the meantime
        if (errno == EEXIST) continue;
        // Some file systems do not support RENAME_NOREPLACE.
        if (errno != EINVAL && errno != ENOSYS) return false;
        if (!exists(name)) return std::rename(path_.constData(), name.constData()) == 0;
    }
    return false;
}

bool AtomicFile::replace(const QByteArray& contents) {
    if (!makeFolder(folder_)) return false;
    // Named after the process: concurrent writers must not rename each other's incomplete file.
    const QByteArray temporary = path_ + kTemporary + QByteArray::number(::getpid());
    const bool ready = writeTemporary(temporary, contents) && (!keepAside_ || moveAside());
    if (ready) keepAside_ = false;
    if (!ready || std::rename(temporary.constData(), path_.constData()) != 0) {
        ::unlink(temporary.constData());
        return false;
    }
    // The rename is durable only once the folder is flushed.
    const Descriptor directory = openFolder(folder_);
    return directory && ::fsync(directory.get()) == 0;
}
