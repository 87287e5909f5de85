#include "worker/ReadText.h"

#include <QLocale>
#include <QStringList>

#include "worker/GreyImage.h"
#include "worker/Ink.h"
#include "worker/Languages.h"
#include "worker/OpenImage.h"
#include "worker/PdfPage.h"
#include "worker/ReadingSize.h"
#include "worker/Recognition.h"

namespace {

Result<GreyPicture> openPicture(const QByteArray& path) {
    if (path.toLower().endsWith(".pdf")) {
        Result<VipsPointer> page = openPdfPage(path);
        if (const auto* failure = std::get_if<Failure>(&page)) return *failure;
        if (auto picture = greyPicture(std::move(std::get<VipsPointer>(page)))) return *std::move(picture);
        return Failure{6, {}};
    }
    if (auto picture = greyPicture(openImage(path))) return *std::move(picture);
    return Failure{1, QStringLiteral("couldn't open the image")};
}

}  // namespace

Result<QString> readText(const QByteArray& path) {
    Result<GreyPicture> picture = openPicture(path);
    if (const auto* failure = std::get_if<Failure>(&picture)) return *failure;
    const Failure nothing{7, QStringLiteral("no text found")};
    Ink ink = findInk(std::get<GreyPicture>(picture));
    if (ink.letterHeight == 0) return nothing;
    const auto lines = recognise(atReadingSize(std::move(ink)), recognitionLanguages(QLocale::system().uiLanguages()));
    if (!lines) return Failure{0, QStringLiteral("no language to read is installed")};
    if (lines->isEmpty()) return nothing;
    return lines->join(u'\n');
}
