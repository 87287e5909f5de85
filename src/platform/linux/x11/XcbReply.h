#pragma once

#include <cstdlib>
#include <memory>

struct FreeDeleter {
    void operator()(void* block) const { std::free(block); }
};

/// Owns a reply, event or error that xcb allocated. Null if the server answered with an error.
template <class T>
using XcbPtr = std::unique_ptr<T, FreeDeleter>;

/// Waits for the answer to a request: `awaitReply(connection, xcb_query_pointer, xcb_query_pointer_reply, window)`.
/// For our own connection use X11Connection::ask(), which also collects events that arrive meanwhile.
template <class Request, class Reply, class... Arguments>
auto awaitReply(auto* connection, Request request, Reply reply, Arguments... arguments) {
    using Answer = std::remove_pointer_t<decltype(reply(connection, request(connection, arguments...), nullptr))>;
    return XcbPtr<Answer>(reply(connection, request(connection, arguments...), nullptr));
}
