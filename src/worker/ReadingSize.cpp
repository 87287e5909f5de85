#include "worker/ReadingSize.h"

#include <algorithm>
#include <cmath>

#include "worker/Recognition.h"

namespace {

// Tesseract makes several copies of this size, and has 16-bit coordinates.
constexpr double kMaxPixels = 40e6;
constexpr double kMaxSide = 30000;
constexpr int kMinReadable = 12;

}  // namespace

GreyPicture atReadingSize(const Ink& ink) {
    const double width = ink.picture.width;
    const double height = ink.picture.height;
    // Small print below a headline must stay readable; if everything is large, any scale will do.
    const double minScale = std::min(0.5, double(kMinReadable) / ink.smallLetterHeight);
    const double wanted = std::clamp(double(kReadingHeight) / ink.letterHeight, minScale, 4.0);
    return resized(ink.picture,
                   std::min({wanted, std::sqrt(kMaxPixels / (width * height)), kMaxSide / std::max(width, height)}));
}
