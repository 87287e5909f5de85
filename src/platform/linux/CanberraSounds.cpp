#include "platform/linux/CanberraSounds.h"

#include <canberra.h>

#include <chrono>
#include <future>
#include <memory>

namespace {

constexpr std::chrono::seconds kLongest(10);

/// The names of the freedesktop sound theme that come closest, best first.
QList<QByteArray> themeSounds(const QString& name) {
    if (name == QLatin1String("Glass")) return {"complete", "bell"};
    if (name == QLatin1String("Pop")) return {"message", "dialog-information", "bell"};
    return {name.toUtf8()};
}

struct ContextDeleter {
    void operator()(ca_context* context) const { ca_context_destroy(context); }
};

void finished(ca_context* /*context*/, uint32_t /*id*/, int /*code*/, void* done) {
    static_cast<std::promise<void>*>(done)->set_value();
}

/// Starts the sound; false if the theme lacks it or nothing can play it.
bool playAndWait(ca_context& context, const QByteArray& sound) {
    struct PropertiesDeleter {
        void operator()(ca_proplist* list) const { ca_proplist_destroy(list); }
    };
    ca_proplist* made = nullptr;
    if (ca_proplist_create(&made) != CA_SUCCESS) return false;
    const std::unique_ptr<ca_proplist, PropertiesDeleter> properties(made);
    ca_proplist_sets(made, CA_PROP_EVENT_ID, sound.constData());

    std::promise<void> done;
    auto end = done.get_future();
    if (ca_context_play_full(&context, 1, made, finished, &done) != CA_SUCCESS) return false;
    if (end.wait_for(kLongest) != std::future_status::ready) {
        // Cancelling calls back too, after which `done` may go.
        if (ca_context_cancel(&context, 1) == CA_SUCCESS) end.wait_for(kLongest);
    }
    return true;
}

void playOne(const QList<QByteArray>& names) {
    ca_context* made = nullptr;
    if (ca_context_create(&made) != CA_SUCCESS) return;
    const std::unique_ptr<ca_context, ContextDeleter> context(made);
    ca_context_change_props(made, CA_PROP_APPLICATION_NAME, "Glimmet", CA_PROP_APPLICATION_ID, "glimmet", nullptr);
    for (const QByteArray& name : names) {
        if (playAndWait(*made, name)) return;
    }
}

}  // namespace

void CanberraSounds::play(const QString& name) {
    queue_.run([names = themeSounds(name)] { playOne(names); });
}
