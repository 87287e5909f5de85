#include "worker/Vips.h"

#include <dlfcn.h>
#include <gmodule.h>

#include <QByteArray>
#include <vips/vips8>

namespace {

constexpr int kThreads = 2;

bool start() {
    // Keep everything that cannot be decoded row by row in memory, never in temporary files.
    qputenv("VIPS_DISC_THRESHOLD", "4g");
    // Hide its modules. Loading all of them, including decoders that are blocked, would take almost as long as the rest
    // of the startup.
    qputenv("VIPSHOME", "/nonexistent");
    if (vips_init("glimmet-worker") != 0) return false;
    // Broken files are expected, so do not log them.
    const auto ignore = [](const char*, GLogLevelFlags, const char*, gpointer) {};
    for (const char* domain : {"VIPS", "Poppler"})
        g_log_set_handler(domain, GLogLevelFlags(G_LOG_LEVEL_WARNING | G_LOG_LEVEL_MESSAGE | G_LOG_LEVEL_CRITICAL),
                          ignore, nullptr);
    vips_concurrency_set(kThreads);
    vips_cache_set_max(0);
    vips_operation_block_set("VipsForeignLoad", TRUE);
    for (const char* decoder :
         {"VipsForeignLoadPng", "VipsForeignLoadJpeg", "VipsForeignLoadHeif", "VipsForeignLoadTiff",
          "VipsForeignLoadWebp", "VipsForeignLoadNsgif", "VipsForeignLoadPdf"})
        vips_operation_block_set(decoder, FALSE);
    return true;
}

}  // namespace

bool startVips() {
    static const bool ready = start();
    return ready;
}

void loadVipsModule(const char* name) {
    Dl_info library{};
    if (::dladdr(reinterpret_cast<const void*>(&vips_init), &library) == 0) return;
    const QByteArray path = library.dli_fname;
    const QByteArray folder = path.left(path.lastIndexOf('/')) + "/vips-modules-" +
                              QByteArray::number(vips_version(0)) + '.' + QByteArray::number(vips_version(1));
    g_module_open((folder + "/vips-" + name + ".so").constData(), G_MODULE_BIND_LAZY);
}
