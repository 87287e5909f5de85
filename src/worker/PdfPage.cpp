#include "worker/PdfPage.h"

#include "worker/Descriptor.h"
#include "worker/Vips.h"

using vips::VImage;

namespace {

// Pixels to a point.
constexpr double scale = 2;
// Pixels, at four bytes each. The largest paper in use, A0, has 32 million at this scale.
constexpr double mostPixels = 64e6;

}  // namespace

Result<VImage> openPdfPage(const QByteArray& path) {
    const Failure unopened{4, QStringLiteral("couldn't open the PDF")};
    const Descriptor file = openRegularFile(path);
    if (!file || !startVips()) return unopened;
    try {
        VImage page = VImage::pdfload_source(vips::VSource::new_from_descriptor(file.get()),
                                             VImage::option()->set("n", 1)->set("scale", scale));
        if (double(page.width()) * page.height() > mostPixels) return Failure{5, {}};
        return page;
    } catch (const vips::VError&) {
        return unopened;
    }
}
