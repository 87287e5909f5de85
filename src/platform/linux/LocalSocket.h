#pragma once

#include <sys/socket.h>
#include <sys/un.h>

#include <algorithm>

#include "platform/Descriptor.h"

/// Connects to the Unix socket of this name, which begins with a zero byte if it is abstract. Empty if nothing listens
/// there. Never blocks: a listener whose backlog is full counts as reached.
inline Descriptor connectToLocalSocket(const QByteArray& name) {
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    if (name.isEmpty() || size_t(name.size()) >= sizeof address.sun_path) return Descriptor();
    std::copy(name.begin(), name.end(), address.sun_path);
    Descriptor socket(::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0));
    const auto length = socklen_t(offsetof(sockaddr_un, sun_path) + size_t(name.size()));
    const bool reached =
        ::connect(socket.get(), reinterpret_cast<const sockaddr*>(&address), length) == 0 || errno == EAGAIN;
    return reached ? std::move(socket) : Descriptor();
}
