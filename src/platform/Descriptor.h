#pragma once

#include <fcntl.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

#include <QByteArray>
#include <utility>

/// A file descriptor that closes itself. Negative when there is none.
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
    /// Leaves it to the caller to close it.
    int release() { return std::exchange(fd_, -1); }

 private:
    int fd_;
};

/// Opens a regular file for reading; none for everything else. Never waits for the other end of a pipe, but as long as
/// the file's disk takes.
inline Descriptor openRegularFile(const QByteArray& path) {
    Descriptor file(::open(path.constData(), O_RDONLY | O_NONBLOCK | O_NOCTTY | O_CLOEXEC));
    struct stat status = {};
    if (file && (::fstat(file.get(), &status) != 0 || !S_ISREG(status.st_mode))) return Descriptor();
    return file;
}

/// A file without a name that holds these bytes, to be read from its beginning; none when there is no memory for it.
/// Unlike a pipe it never makes its writer wait for a reader.
inline Descriptor fileInMemory(const QByteArray& bytes) {
    Descriptor file(::memfd_create("bytes", MFD_CLOEXEC));
    if (file && ::pwrite(file.get(), bytes.constData(), size_t(bytes.size()), 0) != bytes.size()) return Descriptor();
    return file;
}
