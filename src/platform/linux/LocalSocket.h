#pragma once

#include <sys/socket.h>
#include <sys/un.h>

#include <algorithm>

#include "platform/Descriptor.h"

/// A connection to the socket of this name, which begins with a zero if it is abstract. None where nobody listens.
/// Waits for nothing: a listener that has no room for another connection counts as reached.
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
