#include "worker/PdfPage.h"

#include "worker/Vips.h"

using vips::VImage;

namespace {

constexpr double kScale = 2;  // pixels to a point
// At four bytes each. The largest paper in use, A0, has 32 million at this scale.
constexpr double kMaxPixels = 64e6;

}  // namespace

Result<VImage> openPdfPage(int source) {
    const Failure unopened{4, QStringLiteral("couldn't open the PDF")};
    if (!startVips()) return unopened;
    loadVipsModule("poppler");
    try {
        VImage page = VImage::pdfload_source(vips::VSource::new_from_descriptor(source),
                                             VImage::option()->set("n", 1)->set("scale", kScale));
        if (double(page.width()) * page.height() > kMaxPixels) return Failure{5, {}};
        return page;
    } catch (const vips::VError&) {
        return unopened;
    }
}
