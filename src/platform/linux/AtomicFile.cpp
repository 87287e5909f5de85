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

constexpr int kMaxLinks = 40;    // as many as the kernel follows
constexpr int kMaxAside = 1000;  // unreadable files beside each other
const QByteArray kTemporary = ".new-";

bool exists(const QByteArray& path) {
    struct stat status = {};
    return ::lstat(path.constData(), &status) == 0;
}

Descriptor openFolder(const QByteArray& folder) {
    return Descriptor(::open(folder.constData(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
}

/// Readable by its owner only where it has to be made.
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
    // Not left to the closing, which does not end a lock while a child that has not started its program shares it.
    if (lock_) ::flock(lock_.get(), LOCK_UN);
}

bool AtomicFile::keep() {
    makeFolder(folder_);
    lock_ = Descriptor(::open((path_ + ".lock").constData(), O_RDWR | O_CREAT | O_NOFOLLOW | O_CLOEXEC, 0600));
    // In a folder that cannot be written the folder itself does as well.
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

// Under a free name: what was moved aside before stays, too.
bool AtomicFile::moveAside() const {
    for (int counter = 1; counter <= kMaxAside; ++counter) {
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
    const Descriptor directory = openFolder(folder_);
    return directory && ::fsync(directory.get()) == 0;
}
