#include <fcntl.h>
#include <sys/mman.h>
#include <unistd.h>

#include <cstdint>
#include <cstdlib>

#include "worker/Chew.h"

/// Chews any bytes, to whatever end.
extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    // Decoders hardly look at the last byte, so it can say what to make.
    const auto mode = size == 0 ? ChewMode::jpeg : ChewMode(data[size - 1] % 3);
    const int source = memfd_create("source", MFD_CLOEXEC), result = memfd_create("result", MFD_CLOEXEC);
    if (source < 0 || result < 0 || pwrite(source, data, size, 0) != ssize_t(size)) abort();
    chew(source, mode, result);
    close(source);
    close(result);
    return 0;
}
