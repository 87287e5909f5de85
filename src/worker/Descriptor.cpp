#include "worker/Descriptor.h"

#include <fcntl.h>
#include <sys/stat.h>

Descriptor openRegularFile(const QByteArray& path) {
    Descriptor file(::open(path.constData(), O_RDONLY | O_NONBLOCK | O_NOCTTY | O_CLOEXEC));
    struct stat status = {};
    if (file && (::fstat(file.get(), &status) != 0 || !S_ISREG(status.st_mode))) return Descriptor();
    return file;
}
