#include "worker/Recognition.h"

#include <leptonica/allheaders.h>
#include <omp.h>
#include <tesseract/baseapi.h>
#include <tesseract/resultiterator.h>

#include <memory>

namespace {

// Percent. What is recognised in pictures and icons is mostly below, real words are far above.
constexpr float leastConfidence = 30;

QString confidentWords(tesseract::ResultIterator& words) {
    QString line;
    do {
        const std::unique_ptr<char[]> word(words.GetUTF8Text(tesseract::RIL_WORD));
        if (word && words.Confidence(tesseract::RIL_WORD) >= leastConfidence) {
            line += QString::fromUtf8(word.get()) + u' ';
        }
    } while (!words.IsAtFinalElement(tesseract::RIL_TEXTLINE, tesseract::RIL_WORD) && words.Next(tesseract::RIL_WORD));
    return line.simplified();
}

QStringList confidentLines(tesseract::TessBaseAPI& engine) {
    QStringList lines;
    const std::unique_ptr<tesseract::ResultIterator> words(engine.GetIterator());
    if (!words) return lines;
    do {
        if (words->Empty(tesseract::RIL_WORD)) continue;
        if (const QString line = confidentWords(*words); !line.isEmpty()) lines += line;
    } while (words->Next(tesseract::RIL_WORD));
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
    if (engine.Recognize(nullptr) != 0) return QStringList();
    return confidentLines(engine);
}
