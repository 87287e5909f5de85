#include "worker/PdfPage.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

// Pixels to a point.
constexpr double scale = 2;
// Pixels, at four bytes each. The largest paper in use, A0, has 32 million at this scale.
constexpr double mostPixels = 64e6;

bool isRegularFile(const QByteArray& path) {
    struct stat status {};
    return stat(path.constData(), &status) == 0 && S_ISREG(status.st_mode);
}

VipsPointer load(const QByteArray& path, double scaled) {
    VipsImage* page = nullptr;
    vips_pdfload(path.constData(), &page, "page", 0, "n", 1, "scale", scaled, nullptr);
    return VipsPointer(page);
}

}  // namespace

Result<VipsPointer> openPdfPage(const QByteArray& path) {
    const Failure unopened{4, QStringLiteral("couldn't open the PDF")};
    if (!isRegularFile(path)) return unopened;
    VipsPointer page = load(path, scale);
    if (!page) return unopened;
    if (double(vips_image_get_width(page.get())) * vips_image_get_height(page.get()) > mostPixels)
        return Failure{5, {}};
    return page;
}
