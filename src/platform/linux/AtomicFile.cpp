#include "platform/linux/AtomicFile.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <cerrno>
#include <cstdio>

namespace {

constexpr int kMostLinks = 40;  // as many as the kernel follows

/// A file descriptor that closes itself.
class Descriptor {
 public:
    explicit Descriptor(int fd) : fd_(fd) {}
    ~Descriptor() {
        if (fd_ >= 0) ::close(fd_);
    }
    Descriptor(const Descriptor&) = delete;
    Descriptor& operator=(const Descriptor&) = delete;
    explicit operator bool() const { return fd_ >= 0; }
    int get() const { return fd_; }

 private:
    int fd_;
};

QByteArray folderOf(const QByteArray& path) {
    return path.left(path.lastIndexOf('/'));
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
    path_ = QFile::encodeName(file.filePath());
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

bool AtomicFile::replace(const QByteArray& contents) {
    const QByteArray folder = folderOf(path_);
    if (!QFileInfo::exists(QFile::decodeName(folder))) {
        if (!QDir().mkpath(QFile::decodeName(folder))) return false;
        ::chmod(folder.constData(), 0700);
    }
    // A name of this process's own: two programs that write at once must not rename each other's half-written file.
    const QByteArray temporary = path_ + ".new-" + QByteArray::number(::getpid());
    if (!writeTemporary(temporary, contents)) {
        ::unlink(temporary.constData());
        return false;
    }
    if (keepAside_) {
        if (std::rename(path_.constData(), (path_ + ".unreadable").constData()) != 0 && errno != ENOENT) return false;
        keepAside_ = false;
    }
    if (std::rename(temporary.constData(), path_.constData()) != 0) return false;
    // The new name is safe only once the folder is.
    const Descriptor directory(::open(folder.constData(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    return directory && ::fsync(directory.get()) == 0;
}
