#include "worker/Vips.h"

#include <dlfcn.h>
#include <gmodule.h>

#include <QByteArray>
#include <vips/vips8>

namespace {

constexpr int kThreads = 2;

bool start() {
    // What it cannot decode row by row stays in memory; nothing goes to a temporary file.
    qputenv("VIPS_DISC_THRESHOLD", "4g");
    // Nor does it find its modules. Loading all of them, and the libraries of decoders that may not run, would take
    // almost as long as everything else at a start.
    qputenv("VIPSHOME", "/nonexistent");
    if (vips_init("glimmet-worker") != 0) return false;
    // Broken files are to be expected.
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
