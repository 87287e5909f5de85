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

/// Whether a line is text, and not what was recognised in an icon or a photograph. Addresses and program text have
/// little confidence too, but they look like writing.
bool isText(const QString& line, float percent, int height) {
    const auto letters = std::count_if(line.begin(), line.end(), [](QChar c) { return c.isLetterOrNumber(); });
    if (percent >= 90) return true;
    if (percent >= 50) return letters > 0;
    return letters >= 4 && 2 * letters > line.size() && height < 4 * readingHeight;
}

QStringList linesOf(tesseract::TessBaseAPI& engine) {
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
        if (!line.isEmpty() && isText(line, place->Confidence(level), bottom - top)) lines += line;
    } while (place->Next(level));
    return lines;
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
    engine.SetPageSegMode(tesseract::PSM_AUTO);
    engine.SetImage(picture.pixels.data(), picture.width, picture.height, 1, picture.width);
    tesseract::ETEXT_DESC monitor;
    monitor.set_deadline_msecs(int(patience.count()));
    engine.Recognize(&monitor);
    return linesOf(engine);
}
