#pragma once

#include <QByteArray>
#include <functional>
#include <list>
#include <memory>

#include "platform/linux/mpris/GLib.h"

/// A connection to the session bus on a thread of its own, so that neither a bus nor a program that does not answer
/// holds up anyone else. Connects again after the bus has gone away. Unless it says otherwise, everything is to be
/// called on that thread.
class BusThread : public std::enable_shared_from_this<BusThread> {
 public:
    BusThread() = default;
    virtual ~BusThread() = default;
    BusThread(const BusThread&) = delete;
    BusThread& operator=(const BusThread&) = delete;

    /// Starts the thread, which keeps the object alive. Any thread; once.
    void start();
    /// Ends the thread soon, or when a bus that does not answer has been given up. Any thread; does not wait.
    void stop();
    /// Runs `job` on the thread, unless that ends before. Any thread.
    void inBackground(std::function<void()> job);

 protected:
    struct SourceDestroy {
        void operator()(GSource* source) const;
    };
    /// A timer; destroying it cancels it.
    using Timer = std::unique_ptr<GSource, SourceDestroy>;

    /// The bus has been reached.
    virtual void connected() = 0;
    /// The bus is gone, or the thread about to end.
    virtual void disconnected() = 0;

    /// Calls `received` with the sender and the parameters of such signals for as long as the connection lasts. A null
    /// `path` or `first`, the first parameter, matches all; `flags` may make `first` the beginning of a name.
    using Received = void (*)(BusThread& bus, const char* sender, GVariant* parameters);
    void subscribe(const char* interface, const char* signal, const char* path, const char* first,
                   GDBusSignalFlags flags, Received received);
    /// An object of another program, and one of its interfaces.
    struct Peer {
        QByteArray service;
        const char *path, *interface;
    };
    /// Calls a method. `answered` is called once, with null after an error or a second, unless the connection ends
    /// before. Never starts the other program. Takes over `arguments`, which may be null.
    void call(const Peer& peer, const char* method, GVariant* arguments, std::function<void(GVariant*)> answered);
    Timer later(int milliseconds, std::function<void()> job);
    bool isEnding() const { return g_cancellable_is_cancelled(cancellable_.get()); }

 private:
    struct Receiver {
        BusThread* bus;
        Received received;
    };
    struct ContextUnref {
        void operator()(GMainContext* context) const { g_main_context_unref(context); }
    };

    void run();
    void connect();
    void disconnect();
    void connectLater();

    const std::unique_ptr<GMainContext, ContextUnref> context_{g_main_context_new()};
    const GObjectPtr<GCancellable> cancellable_{g_cancellable_new()};
    GObjectPtr<GDBusConnection> connection_;
    std::list<Receiver> receivers_;  // of all connections so far; they are few
    int retry_ = 0;                  // how often the bus was not reached in a row
    Timer retryTimer_;
};
