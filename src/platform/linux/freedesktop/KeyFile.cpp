#include "platform/linux/freedesktop/KeyFile.h"

#include <glib.h>
#include <sys/stat.h>

#include <memory>

QString keyFileValue(const QByteArray& path, const char* group, const char* key) {
    constexpr off_t kMaxBytes = 1 << 20;
    struct stat status = {};
    if (::stat(path.constData(), &status) != 0 || !S_ISREG(status.st_mode) || status.st_size > kMaxBytes) return {};
    const std::unique_ptr<GKeyFile, decltype(&g_key_file_unref)> file(g_key_file_new(), &g_key_file_unref);
    if (!g_key_file_load_from_file(file.get(), path.constData(), G_KEY_FILE_NONE, nullptr)) return {};
    const std::unique_ptr<char, decltype(&g_free)> value(g_key_file_get_string(file.get(), group, key, nullptr),
                                                         &g_free);
    return QString::fromUtf8(value.get());
}
