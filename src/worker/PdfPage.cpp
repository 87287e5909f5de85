#include "worker/PdfPage.h"

#include <sys/stat.h>

using vips::VImage;

namespace {

// Pixels to a point.
constexpr double scale = 2;
// Pixels, at four bytes each. The largest paper in use, A0, has 32 million at this scale.
constexpr double mostPixels = 64e6;

bool isRegularFile(const QByteArray& path) {
    struct stat status {};
    return stat(path.constData(), &status) == 0 && S_ISREG(status.st_mode) && status.st_size > 0;
}

}  // namespace

Result<VImage> openPdfPage(const QByteArray& path) {
    const Failure unopened{4, QStringLiteral("couldn't open the PDF")};
    if (!isRegularFile(path)) return unopened;
    try {
        VImage page = VImage::pdfload(path.constData(), VImage::option()->set("n", 1)->set("scale", scale));
        if (double(page.width()) * page.height() > mostPixels) return Failure{5, {}};
        return page;
    } catch (const vips::VError&) {
        return unopened;
    }
}
