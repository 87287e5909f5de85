#pragma once

#include <unistd.h>

#include <utility>

/// A file descriptor that closes itself. Negative when there is none.
class OwnedDescriptor {
 public:
    explicit OwnedDescriptor(int fd = -1) : fd_(fd) {}
    ~OwnedDescriptor() {
        if (fd_ >= 0) ::close(fd_);
    }
    OwnedDescriptor(OwnedDescriptor&& other) noexcept : fd_(std::exchange(other.fd_, -1)) {}
    OwnedDescriptor& operator=(OwnedDescriptor&& other) noexcept {
        std::swap(fd_, other.fd_);
        return *this;
    }

    explicit operator bool() const { return fd_ >= 0; }
    int get() const { return fd_; }

 private:
    int fd_;
};
