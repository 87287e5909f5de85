// Opens images and PDF pages from bytes that may be anything, as far as the picture that recognition would be given.
#include <fcntl.h>
#include <sys/mman.h>
#include <unistd.h>

#include "worker/GreyPicture.h"
#include "worker/ImageFile.h"
#include "worker/Ink.h"
#include "worker/PdfPage.h"
#include "worker/ReadingSize.h"

namespace {

/// Gives the image, or throws; both are fine.
template <class Open>
void prepare(Open open) {
    try {
        const Ink ink = findInk(greyPicture(open()));
        if (ink.letterHeight > 0) atReadingSize(ink);
    } catch (const vips::VError&) {
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    const int file = memfd_create("input", MFD_CLOEXEC);
    if (file < 0 || pwrite(file, data, size, 0) != ssize_t(size)) abort();
    if (const auto image = ImageFile::open(file)) prepare([&] { return image->decode(1); });
    lseek(file, 0, SEEK_SET);
    Result<vips::VImage> page = openPdfPage(file);
    if (const auto* image = std::get_if<vips::VImage>(&page)) prepare([&] { return *image; });
    vips_error_clear();
    close(file);
    return 0;
}
