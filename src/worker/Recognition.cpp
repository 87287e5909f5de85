#include "worker/Recognition.h"

#include <leptonica/allheaders.h>
#include <omp.h>
#include <tesseract/baseapi.h>
#include <tesseract/ocrclass.h>
#include <tesseract/resultiterator.h>

#include <algorithm>
#include <chrono>
#include <memory>

namespace {

// A screen that is full of small print takes ten seconds or more. When the time is up, what was read so far is the
// answer.
constexpr std::chrono::milliseconds patience = std::chrono::seconds(40);

// In reading heights; below, there is no layout to find, and trying twice takes little.
constexpr int fewLines = 6;

qsizetype lettersIn(const QString& line) {
    return std::count_if(line.begin(), line.end(), [](QChar c) { return c.isLetterOrNumber(); });
}

/// Whether a line is text, and not what was recognised in an icon or a photograph. Addresses and program text have
/// little confidence too, but they look like writing.
bool isText(const QString& line, float percent, int height) {
    const auto letters = lettersIn(line);
    if (percent >= 90) return true;
    if (percent >= 50) return letters > 0;
    return letters >= 4 && 2 * letters > line.size() && height < 4 * readingHeight;
}

/// Where no layout was found, most pictures are icons, and many look like a letter.
bool isCertain(const QString& line, float percent, int) {
    return percent >= 90 && lettersIn(line) > 1;
}

QStringList linesOf(tesseract::TessBaseAPI& engine, bool (*isWanted)(const QString&, float, int)) {
    QStringList lines;
    const std::unique_ptr<tesseract::ResultIterator> place(engine.GetIterator());
    if (!place) return lines;
    constexpr auto level = tesseract::RIL_TEXTLINE;
    do {
        const std::unique_ptr<char[]> text(place->GetUTF8Text(level));
        int left = 0;
        int top = 0;
        int right = 0;
        int bottom = 0;
        if (!text || !place->BoundingBox(level, &left, &top, &right, &bottom)) continue;
        const QString line = QString::fromUtf8(text.get()).simplified();
        if (!line.isEmpty() && isWanted(line, place->Confidence(level), bottom - top)) lines += line;
    } while (place->Next(level));
    return lines;
}

/// From the first row with ink to the last, in pixels.
int inkHeight(const GreyPicture& picture) {
    constexpr uint8_t grey = 128;
    const auto isInk = [](uint8_t value) { return value < grey; };
    const auto& pixels = picture.pixels;
    const auto first = std::find_if(pixels.begin(), pixels.end(), isInk) - pixels.begin();
    const auto last = pixels.rend() - std::find_if(pixels.rbegin(), pixels.rend(), isInk);
    return first < last ? int((last - 1) / picture.width - first / picture.width) + 1 : 0;
}

QStringList read(tesseract::TessBaseAPI& engine, const GreyPicture& picture, tesseract::PageSegMode mode) {
    engine.SetPageSegMode(mode);
    engine.SetImage(picture.pixels.data(), picture.width, picture.height, 1, picture.width);
    tesseract::ETEXT_DESC monitor;
    monitor.set_deadline_msecs(int(patience.count()));
    engine.Recognize(&monitor);
    return linesOf(engine, mode == tesseract::PSM_AUTO ? isText : isCertain);
}

}  // namespace

std::optional<QStringList> recognise(const GreyPicture& picture, const QByteArray& languages) {
    // It would share out the work on each line, which is too little to share: threads only make it slower.
    omp_set_max_active_levels(0);
    setMsgSeverity(L_SEVERITY_NONE);
    tesseract::TessBaseAPI engine;
    engine.SetVariable("debug_file", "/dev/null");
    if (engine.Init(nullptr, languages.constData(), tesseract::OEM_LSTM_ONLY) != 0) return {};
    engine.SetVariable("user_defined_dpi", "300");
    engine.SetVariable("tessedit_do_invert", "0");
    QStringList lines = read(engine, picture, tesseract::PSM_AUTO);
    // A word or two are often no page to it.
    if (lines.isEmpty() && inkHeight(picture) < fewLines * readingHeight)
        lines = read(engine, picture, tesseract::PSM_SINGLE_BLOCK);
    return lines;
}
