#include "platform/linux/CanberraSounds.h"

#include <canberra.h>

#include <QByteArray>
#include <QList>
#include <chrono>
#include <memory>
#include <semaphore>
#include <tuple>

namespace {

constexpr std::chrono::seconds kMaxDuration(10);

/// The closest names in the freedesktop sound theme, best first.
QList<QByteArray> themeSounds(const QString& name) {
    if (name == QLatin1String("Glass")) return {"complete", "bell"};
    if (name == QLatin1String("Pop")) return {"message", "dialog-information", "bell"};
    return {name.toUtf8()};
}

struct ContextDeleter {
    void operator()(ca_context* context) const { ca_context_destroy(context); }
};

struct PropertiesDeleter {
    void operator()(ca_proplist* list) const { ca_proplist_destroy(list); }
};

using End = std::counting_semaphore<>;

// Called when the sound has ended, and by some backends again when the context is destroyed.
void finished(ca_context* /*context*/, uint32_t /*id*/, int /*code*/, void* end) {
    static_cast<End*>(end)->release();
}

/// Plays the sound to its end; false if the theme does not have it or there is no output.
bool playToEnd(const QByteArray& sound) {
    End end(0);  // outlives the context
    ca_context* made = nullptr;
    if (ca_context_create(&made) != CA_SUCCESS) return false;
    const std::unique_ptr<ca_context, ContextDeleter> context(made);
    // The ALSA backend may be unloaded while its player thread still runs in it.
    ca_context_set_driver(made, "pulse");
    ca_context_change_props(made, CA_PROP_APPLICATION_NAME, "Glimmet", CA_PROP_APPLICATION_ID, "glimmet", nullptr);

    ca_proplist* list = nullptr;
    if (ca_proplist_create(&list) != CA_SUCCESS) return false;
    const std::unique_ptr<ca_proplist, PropertiesDeleter> properties(list);
    ca_proplist_sets(list, CA_PROP_EVENT_ID, sound.constData());
    if (ca_context_play_full(made, 1, list, finished, &end) != CA_SUCCESS) return false;
    // Destroying the context cuts off a longer sound.
    std::ignore = end.try_acquire_for(kMaxDuration);
    return true;
}

void playFirstOf(const QList<QByteArray>& names) {
    for (const QByteArray& name : names) {
        if (playToEnd(name)) return;
    }
}

}  // namespace

void CanberraSounds::play(const QString& name) {
    queue_.run([names = themeSounds(name)] { playFirstOf(names); });
}
