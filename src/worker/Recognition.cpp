#include "worker/Recognition.h"

#include <leptonica/allheaders.h>
#include <omp.h>
#include <tesseract/baseapi.h>
#include <tesseract/ocrclass.h>
#include <tesseract/resultiterator.h>

#include <algorithm>
#include <array>
#include <chrono>
#include <memory>
#include <vector>

namespace {

using Clock = std::chrono::steady_clock;

// A screen full of small print takes ten seconds or more. After the timeout, the answer is what has been read so far.
constexpr std::chrono::milliseconds kTimeout = std::chrono::seconds(40);

// In reading heights. Smaller texts have no layout to detect, and retrying is cheap.
constexpr int kFewLines = 6;

// Confidence in per cent. Upside-down text, leaves and bricks are taken for letters with 60 at most; clear text has
// more than 90.
constexpr float kCertain = 90;
constexpr float kLikely = 70;
constexpr float kUnlikely = 20;

struct Line {
    QString text;
    float percent;
    int height;
    bool isOnItsSide;  ///< It runs from top to bottom.
};
using Lines = std::vector<Line>;

qsizetype lettersIn(const QString& text) {
    return std::count_if(text.begin(), text.end(), [](QChar c) { return c.isLetterOrNumber(); });
}

/// Whether a line of a page is real text, rather than part of an icon or a photograph. URLs and source code have low
/// confidence too, but consist mostly of letters.
bool isText(const Line& line) {
    const auto letters = lettersIn(line.text);
    if (line.percent >= kCertain) return true;
    if (line.isOnItsSide) return false;
    if (line.percent >= 50) return letters > 0;
    return line.percent >= kUnlikely && letters >= 4 && 2 * letters > line.text.size() &&
           line.height < 4 * kReadingHeight;
}

/// Whether an isolated line is text: most pictures with little on them are icons, many of which look like a letter.
bool isWord(const Line& line) {
    return line.percent >= kCertain && lettersIn(line.text) > 1;
}

/// Whether the line is one character. Bars and dots are more often drawn than written.
bool isCharacter(const Line& line) {
    constexpr float kEnough = 80;
    return line.percent >= kEnough && line.text.size() == 1 &&
           (lettersIn(line.text) == 1 || QStringView(u"&?%@#$\u20AC\u00A3").contains(line.text[0]));
}

/// The share of the wanted lines in all characters.
template <typename IsWanted>
double share(const Lines& lines, IsWanted isWanted) {
    qsizetype all = 0;
    qsizetype wanted = 0;
    for (const Line& line : lines) {
        all += line.text.size();
        if (isWanted(line)) wanted += line.text.size();
    }
    return all == 0 ? 0 : double(wanted) / double(all);
}

/// Whether most of a page is upright and was recognised well.
bool isRight(const Lines& lines) {
    return share(lines, [](const Line& line) {
               return !line.isOnItsSide && line.percent >= kLikely && lettersIn(line.text) > 1;
           }) > 0.5;
}

bool isOnItsSide(const Lines& lines) {
    return share(lines, [](const Line& line) { return line.isOnItsSide; }) > 0.5;
}

/// Whether the page cannot even be upside-down text, of which some lines always look like words.
bool isHopeless(const Lines& lines) {
    return share(lines, [](const Line& line) { return line.percent >= kUnlikely; }) < 0.3;
}

QStringList textOf(const Lines& lines, bool (*isWanted)(const Line&)) {
    QStringList texts;
    for (const Line& line : lines) {
        if (isWanted(line)) texts += line.text;
    }
    return texts;
}

/// The rectangle that holds all ink, in pixels.
struct Extent {
    int width, height;
};

Extent inkExtent(const GreyPicture& picture) {
    constexpr uint8_t kGrey = 128;
    int left = picture.width;
    int right = -1;
    int top = picture.height;
    int bottom = -1;
    for (int y = 0; y < picture.height; ++y) {
        for (int x = 0; x < picture.width; ++x) {
            if (picture.pixels[picture.at(x, y)] >= kGrey) continue;
            left = std::min(left, x);
            right = std::max(right, x);
            top = std::min(top, y);
            bottom = y;
        }
    }
    return {std::max(0, right - left + 1), std::max(0, bottom - top + 1)};
}

Lines linesOf(tesseract::TessBaseAPI& engine) {
    Lines lines;
    const std::unique_ptr<tesseract::ResultIterator> place(engine.GetIterator());
    if (!place) return lines;
    constexpr auto kLevel = tesseract::RIL_TEXTLINE;
    do {
        const std::unique_ptr<char[]> text(place->GetUTF8Text(kLevel));
        int left = 0;
        int top = 0;
        int right = 0;
        int bottom = 0;
        if (!text || !place->BoundingBox(kLevel, &left, &top, &right, &bottom)) continue;
        const QString line = QString::fromUtf8(text.get()).simplified();
        const int width = right - left;
        const int height = bottom - top;
        if (!line.isEmpty())
            lines.push_back(
                {line, place->Confidence(kLevel), std::min(width, height), height > width && line.size() > 2});
    } while (place->Next(kLevel));
    return lines;
}

class Reader {
 public:
    explicit Reader(tesseract::TessBaseAPI& engine) : engine_(engine) {}

    /// The text in a picture that may be rotated by any multiple of 90 degrees.
    QStringList read(GreyPicture picture) {
        const Extent ink = inkExtent(picture);
        const bool isSmall = std::min(ink.width, ink.height) < kFewLines * kReadingHeight;
        QStringList most;
        Lines lines = attempt(picture, tesseract::PSM_AUTO);
        // Vertical lines are found, but not as a page, so the picture is turned as well.
        const std::array quarters = isOnItsSide(lines) ? std::array{0, 3, 2, 1} : std::array{0, 2, 1, 2};
        for (const int turn : quarters) {
            if (turn != 0) {
                picture = turned(picture, turn);
                lines = attempt(picture, tesseract::PSM_AUTO);
            }
            if (isRight(lines)) return textOf(lines, isText);
            // Tesseract often does not recognise a word or two as a page.
            if (isSmall) {
                const QStringList words = textOf(attempt(picture, tesseract::PSM_SINGLE_BLOCK), isWord);
                if (!words.isEmpty()) return words;
            } else if (isHopeless(lines)) {
                break;
            }
            if (turn == 0 && std::max(ink.width, ink.height) < 2 * kReadingHeight) {
                const QStringList character = textOf(attempt(picture, tesseract::PSM_SINGLE_LINE), isCharacter);
                if (!character.isEmpty()) return character;
            }
            QStringList words = textOf(lines, isWord);
            if (lettersIn(words.join(QString())) > lettersIn(most.join(QString()))) most = std::move(words);
        }
        return most;
    }

 private:
    Lines attempt(const GreyPicture& picture, tesseract::PageSegMode mode) {
        const auto left = std::chrono::duration_cast<std::chrono::milliseconds>(until_ - Clock::now());
        if (left.count() <= 0) return {};
        engine_.SetPageSegMode(mode);
        engine_.SetImage(picture.pixels.data(), picture.width, picture.height, 1, picture.width);
        tesseract::ETEXT_DESC monitor;
        monitor.set_deadline_msecs(int(left.count()));
        engine_.Recognize(&monitor);
        return linesOf(engine_);
    }

    tesseract::TessBaseAPI& engine_;
    const Clock::time_point until_ = Clock::now() + kTimeout;
};

}  // namespace

std::optional<QStringList> recognise(const GreyPicture& picture, const QByteArray& languages) {
    // Tesseract would parallelise the work on each line, which is too small: threads only slow it down.
    omp_set_max_active_levels(0);
    setMsgSeverity(L_SEVERITY_NONE);
    tesseract::TessBaseAPI engine;
    engine.SetVariable("debug_file", "/dev/null");
    if (engine.Init(nullptr, languages.constData(), tesseract::OEM_LSTM_ONLY) != 0) return {};
    engine.SetVariable("user_defined_dpi", "300");
    engine.SetVariable("tessedit_do_invert", "0");
    return Reader(engine).read(picture);
}
