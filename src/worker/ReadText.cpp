#include "worker/ReadText.h"

#include <QLocale>
#include <QStringList>

#include "worker/GreyImage.h"
#include "worker/ImageFile.h"
#include "worker/Ink.h"
#include "worker/Languages.h"
#include "worker/PdfPage.h"
#include "worker/ReadingSize.h"
#include "worker/Recognition.h"

namespace {

Result<GreyPicture> openPage(const QByteArray& path) {
    Result<vips::VImage> page = openPdfPage(path);
    if (const auto* failure = std::get_if<Failure>(&page)) return *failure;
    try {
        return greyPicture(std::get<vips::VImage>(page));
    } catch (const vips::VError&) {
        return Failure{6, {}};
    }
}

Result<GreyPicture> openPicture(const QByteArray& path) {
    if (path.toLower().endsWith(".pdf")) return openPage(path);
    const Failure unopened{1, QStringLiteral("couldn't open the image")};
    const auto image = ImageFile::open(path);
    if (!image) return unopened;
    try {
        return greyPicture(image->decode(1));
    } catch (const vips::VError&) {
        return unopened;
    }
}

}  // namespace

Result<QString> readText(const QByteArray& path) {
    const Result<GreyPicture> picture = openPicture(path);
    if (const auto* failure = std::get_if<Failure>(&picture)) return *failure;
    const Failure nothing{7, QStringLiteral("no text found")};
    const Ink ink = findInk(std::get<GreyPicture>(picture));
    if (ink.letterHeight == 0) return nothing;
    const auto lines = recognise(atReadingSize(ink), recognitionLanguages(QLocale::system().uiLanguages()));
    if (!lines) return Failure{0, QStringLiteral("no language to read is installed")};
    if (lines->isEmpty()) return nothing;
    return lines->join(u'\n');
}
