#pragma once

#include <fcntl.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

#include <QByteArray>
#include <cerrno>
#include <optional>
#include <utility>

/// Owns a file descriptor. Empty if negative.
class Descriptor {
 public:
    explicit Descriptor(int fd = -1) : fd_(fd) {}
    ~Descriptor() {
        if (fd_ >= 0) ::close(fd_);
    }
    Descriptor(Descriptor&& other) noexcept : fd_(std::exchange(other.fd_, -1)) {}
    Descriptor& operator=(Descriptor&& other) noexcept {
        std::swap(fd_, other.fd_);
        return *this;
    }

    explicit operator bool() const { return fd_ >= 0; }
    int get() const { return fd_; }
    /// Gives up ownership: the caller has to close it.
    int release() { return std::exchange(fd_, -1); }

 private:
    int fd_;
};

/// Opens a regular file for reading; empty for anything else. Does not block on a pipe's other end, but may on the
/// disk.
inline Descriptor openRegularFile(const QByteArray& path) {
    Descriptor file(::open(path.constData(), O_RDONLY | O_NONBLOCK | O_NOCTTY | O_CLOEXEC));
    struct stat status = {};
    if (file && (::fstat(file.get(), &status) != 0 || !S_ISREG(status.st_mode))) return Descriptor();
    return file;
}

/// Reads the rest of the file, up to `max` bytes; absent on failure.
inline std::optional<QByteArray> readUpTo(int descriptor, qsizetype max) {
    QByteArray bytes(max, Qt::Uninitialized);
    qsizetype got = 0;
    while (got < max) {
        const ssize_t n = ::read(descriptor, bytes.data() + got, size_t(max - got));
        if (n < 0 && errno == EINTR) continue;
        if (n < 0) return {};
        if (n == 0) break;
        got += n;
    }
    bytes.truncate(got);
    return bytes;
}

/// False if not everything could be written.
inline bool writeAll(int descriptor, const QByteArray& bytes) {
    for (qsizetype done = 0; done < bytes.size();) {
        const ssize_t n = ::write(descriptor, bytes.constData() + done, size_t(bytes.size() - done));
        if (n < 0 && errno == EINTR) continue;
        if (n <= 0) return false;
        done += n;
    }
    return true;
}

/// An anonymous file in memory with these bytes, positioned at its start; empty if out of memory. Unlike a pipe, it
/// never blocks the writer.
inline Descriptor fileInMemory(const QByteArray& bytes) {
    Descriptor file(::memfd_create("bytes", MFD_CLOEXEC));
    if (file && (!writeAll(file.get(), bytes) || ::lseek(file.get(), 0, SEEK_SET) != 0)) return Descriptor();
    return file;
}
