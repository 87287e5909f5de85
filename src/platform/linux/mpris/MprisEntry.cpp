#include "platform/linux/mpris/MprisEntry.h"

#include <algorithm>
#include <memory>

#include "platform/FileUrls.h"
#include "platform/linux/PlainLine.h"
#include "platform/linux/mpris/GLib.h"

namespace {

constexpr gsize kMaxText = 4800;              // bytes that are looked at
constexpr gsize kMaxAddress = 8 << 10;        // bytes
constexpr gsize kMaxDataAddress = 512 << 10;  // a cover of 384 KiB in base64
constexpr gsize kMaxNames = 8;

QString textOf(GVariant* value) {
    if (!value || !g_variant_is_of_type(value, G_VARIANT_TYPE_STRING)) return {};
    gsize size = 0;
    const char* text = g_variant_get_string(value, &size);
    return plainLine(QString::fromUtf8(text, qsizetype(std::min(size, kMaxText))));
}

GVariantPtr valueOf(GVariant* properties, const char* key) {
    return GVariantPtr(g_variant_lookup_value(properties, key, nullptr));
}

/// Several names in a list; some players give a single text instead.
QString namesIn(GVariant* metadata, const char* key) {
    const GVariantPtr value = valueOf(metadata, key);
    if (!value || !g_variant_is_of_type(value.get(), G_VARIANT_TYPE_STRING_ARRAY)) return textOf(value.get());
    QStringList names;
    for (gsize i = 0; i < std::min(g_variant_n_children(value.get()), kMaxNames); ++i) {
        const GVariantPtr name(g_variant_get_child_value(value.get(), i));
        if (const QString text = textOf(name.get()); !text.isEmpty()) names.append(text);
    }
    return plainLine(names.join(QStringLiteral(", ")));
}

QUrl addressIn(GVariant* metadata, const char* key) {
    const GVariantPtr value = valueOf(metadata, key);
    if (!value || !g_variant_is_of_type(value.get(), G_VARIANT_TYPE_STRING)) return {};
    gsize size = 0;
    const char* text = g_variant_get_string(value.get(), &size);
    const QByteArray bytes = QByteArray::fromRawData(text, qsizetype(size));
    if (size > (bytes.startsWith("data:") ? kMaxDataAddress : kMaxAddress)) return {};
    // Some players give a bare path.
    return bytes.startsWith('/') ? fileUrl(bytes) : QUrl::fromEncoded(bytes);
}

MprisEntry::Status statusNamed(const QString& name) {
    if (name == QLatin1String("Playing")) return MprisEntry::Status::playing;
    return name == QLatin1String("Paused") ? MprisEntry::Status::paused : MprisEntry::Status::stopped;
}

}  // namespace

QString plainText(GVariant* properties, const char* key) {
    return textOf(valueOf(properties, key).get());
}

void readPlayer(GVariant* properties, MprisEntry& entry) {
    if (valueOf(properties, "PlaybackStatus")) entry.status = statusNamed(plainText(properties, "PlaybackStatus"));
    const GVariantPtr metadata = valueOf(properties, "Metadata");
    if (!metadata) return;
    const bool isDictionary = g_variant_is_of_type(metadata.get(), G_VARIANT_TYPE_VARDICT);
    const GVariantPtr empty(isDictionary ? nullptr : g_variant_ref_sink(g_variant_new("a{sv}", nullptr)));
    GVariant* const told = isDictionary ? metadata.get() : empty.get();
    entry.title = plainText(told, "xesam:title");
    entry.artist = namesIn(told, "xesam:artist");
    entry.album = plainText(told, "xesam:album");
    entry.address = addressIn(told, "xesam:url");
    entry.cover = addressIn(told, "mpris:artUrl");
}
