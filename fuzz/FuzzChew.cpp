#include <fcntl.h>
#include <sys/mman.h>
#include <unistd.h>

#include <cstdint>
#include <cstdlib>

#include "worker/Chew.h"
#include "worker/Thumbnail.h"

/// Chews any bytes or makes a thumbnail of them, to whatever end.
extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    // Decoders hardly look at the last byte, so it can say what to make.
    const int job = size == 0 ? 0 : data[size - 1] % 4;
    const int source = memfd_create("source", MFD_CLOEXEC), result = memfd_create("result", MFD_CLOEXEC);
    if (source < 0 || result < 0 || pwrite(source, data, size, 0) != ssize_t(size)) abort();
    if (job == 3)
        thumbnailOf(source, kMaxThumbnailSide);
    else
        chew(source, ChewMode(job), result);
    close(source);
    close(result);
    return 0;
}
