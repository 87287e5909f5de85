#include "worker/ReadText.h"

#include <QLocale>
#include <QStringList>
#include <cstdlib>

#include "worker/GreyPicture.h"
#include "worker/ImageFile.h"
#include "worker/Ink.h"
#include "worker/Languages.h"
#include "worker/PdfPage.h"
#include "worker/ReadingSize.h"
#include "worker/Recognition.h"

namespace {

Result<GreyPicture> openPage(int source) {
    Result<vips::VImage> page = openPdfPage(source);
    if (const auto* failure = std::get_if<Failure>(&page)) return *failure;
    try {
        return greyPicture(std::get<vips::VImage>(page));
    } catch (const vips::VError&) {
        return Failure{6, {}};
    }
}

Result<GreyPicture> openPicture(int source, Document kind) {
    if (kind == Document::pdf) return openPage(source);
    const auto image = ImageFile::open(source);
    if (!image) return cannotOpenImage();
    try {
        return greyPicture(image->decode(1));
    } catch (const vips::VError&) {
        return cannotOpenImage();
    }
}

}  // namespace

std::vector<const char*> foldersForReading() {
    std::vector<const char*> folders{// fonts, for documents that do not embed theirs
                                     "/usr/share/fonts", "/usr/local/share/fonts", "/usr/share/fontconfig",
                                     "/etc/fonts", "/var/cache/fontconfig", "/usr/share/poppler",
                                     // trained data for recognition
                                     "/usr/share/tesseract-ocr", "/usr/share/tessdata"};
    // The user's own trained data.
    if (const char* const data = std::getenv("TESSDATA_PREFIX")) folders.push_back(data);
    return folders;
}

Result<QString> readText(int source, Document kind) {
    const Result<GreyPicture> picture = openPicture(source, kind);
    if (const auto* failure = std::get_if<Failure>(&picture)) return *failure;
    const Failure nothing{7, QStringLiteral("no text found")};
    const Ink ink = findInk(std::get<GreyPicture>(picture));
    if (ink.letterHeight == 0) return nothing;
    const auto lines = recognise(atReadingSize(ink), recognitionLanguages(QLocale::system().uiLanguages()));
    if (!lines) return Failure{0, QStringLiteral("no language to read is installed")};
    if (lines->isEmpty()) return nothing;
    return lines->join(u'\n');
}
