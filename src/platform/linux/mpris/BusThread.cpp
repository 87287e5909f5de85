#include "platform/linux/mpris/BusThread.h"

#include <algorithm>
#include <atomic>
#include <thread>
#include <utility>

#include "platform/linux/SilentBus.h"

namespace {

constexpr int kTimeout = 1000;  // milliseconds for an answer
constexpr int kFirstRetry = 1000;
constexpr int kMaxDoublings = 6;  // to about a minute

using Job = std::function<void()>;

gboolean runOnce(gpointer data) {
    // The job may destroy its own source.
    const Job job = *static_cast<Job*>(data);
    job();
    return G_SOURCE_REMOVE;
}

void attach(GSource* source, Job job, GMainContext* context) {
    g_source_set_callback(source, runOnce, new Job(std::move(job)),
                          [](gpointer data) { delete static_cast<Job*>(data); });
    g_source_attach(source, context);
}

}  // namespace

void BusThread::SourceDestroy::operator()(GSource* source) const {
    g_source_destroy(source);
    g_source_unref(source);
}

void BusThread::start() {
    std::thread([self = shared_from_this()] { self->run(); }).detach();
}

void BusThread::stop() {
    g_cancellable_cancel(cancellable_.get());
    g_main_context_wakeup(context_.get());
}

void BusThread::inBackground(Job job) {
    GSource* source = g_idle_source_new();
    g_source_set_priority(source, G_PRIORITY_DEFAULT);
    attach(
        source,
        [weak = weak_from_this(), job = std::move(job)] {
            if (const auto self = weak.lock()) job();
        },
        context_.get());
    g_source_unref(source);
}

void BusThread::run() {
    g_main_context_push_thread_default(context_.get());
    connect();
    while (!isEnding()) g_main_context_iteration(context_.get(), true);
    retryTimer_.reset();
    // Calls that were cancelled still report that, and hold references until then; all of it on this thread, and
    // before the connection is gone.
    struct End {
        GMainContext* context;
        std::atomic<bool> reached;
    } end{context_.get(), !connection_};
    const auto reach = [](gpointer data, GObject*) {
        static_cast<End*>(data)->reached = true;
        g_main_context_wakeup(static_cast<End*>(data)->context);
    };
    if (connection_) g_object_weak_ref(G_OBJECT(connection_.get()), reach, &end);
    disconnect();
    while (!end.reached) g_main_context_iteration(context_.get(), true);
    while (g_main_context_iteration(context_.get(), false)) continue;
    g_main_context_pop_thread_default(context_.get());
}

// Blocks for up to half a minute on a bus that does not answer.
void BusThread::connect() {
    constexpr auto flags = GDBusConnectionFlags(G_DBUS_CONNECTION_FLAGS_AUTHENTICATION_CLIENT |
                                                G_DBUS_CONNECTION_FLAGS_MESSAGE_BUS_CONNECTION);
    const QByteArray address = sessionBusAddress();
    if (!address.isEmpty())
        connection_.reset(
            g_dbus_connection_new_for_address_sync(address.constData(), flags, nullptr, cancellable_.get(), nullptr));
    if (!connection_) return connectLater();
    retry_ = 0;
    g_dbus_connection_set_exit_on_close(connection_.get(), false);
    const auto closed = +[](GDBusConnection*, gboolean, GError*, gpointer self) {
        static_cast<BusThread*>(self)->disconnect();
        static_cast<BusThread*>(self)->connectLater();
    };
    g_signal_connect(connection_.get(), "closed", G_CALLBACK(closed), this);
    connected();
}

void BusThread::connectLater() {
    retryTimer_ = later(kFirstRetry << std::min(retry_++, kMaxDoublings), [this] { connect(); });
}

void BusThread::disconnect() {
    if (!connection_) return;
    g_signal_handlers_disconnect_by_data(connection_.get(), this);
    g_dbus_connection_close_sync(connection_.get(), nullptr, nullptr);
    connection_.reset();
    disconnected();
}

void BusThread::subscribe(const char* interface, const char* signal, const char* path, const char* first,
                          GDBusSignalFlags flags, Received received) {
    const auto forward = [](GDBusConnection* connection, const gchar* sender, const gchar*, const gchar*, const gchar*,
                            GVariant* parameters, gpointer data) {
        const auto& [bus, told] = *static_cast<Receiver*>(data);
        if (connection == bus->connection_.get() && sender) told(*bus, sender, parameters);
    };
    receivers_.push_back({this, received});
    g_dbus_connection_signal_subscribe(connection_.get(), nullptr, interface, signal, path, first, flags, forward,
                                       &receivers_.back(), nullptr);
}

void BusThread::call(const Peer& peer, const char* method, GVariant* arguments,
                     std::function<void(GVariant*)> answered) {
    struct Waiting {
        std::shared_ptr<BusThread> bus;
        std::function<void(GVariant*)> answered;
    };
    const GVariantPtr owned(arguments ? g_variant_ref_sink(arguments) : nullptr);
    if (!connection_) return;
    const auto done = [](GObject* object, GAsyncResult* result, gpointer data) {
        const std::unique_ptr<Waiting> waiting(static_cast<Waiting*>(data));
        auto* connection = reinterpret_cast<GDBusConnection*>(object);
        const GVariantPtr answer(g_dbus_connection_call_finish(connection, result, nullptr));
        if (connection == waiting->bus->connection_.get()) waiting->answered(answer.get());
    };
    g_dbus_connection_call(connection_.get(), peer.service.constData(), peer.path, peer.interface, method, owned.get(),
                           nullptr, G_DBUS_CALL_FLAGS_NO_AUTO_START, kTimeout, cancellable_.get(), done,
                           new Waiting{shared_from_this(), std::move(answered)});
}

BusThread::Timer BusThread::later(int milliseconds, Job job) {
    Timer timer(g_timeout_source_new(guint(milliseconds)));
    attach(timer.get(), std::move(job), context_.get());
    return timer;
}
