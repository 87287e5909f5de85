#include "worker/ReadingSize.h"

#include <algorithm>
#include <cmath>

#include "worker/GreyImage.h"
#include "worker/Recognition.h"

namespace {

// Recognition keeps several pictures of this size, and counts pixels in 16 bits.
constexpr double mostPixels = 40e6;
constexpr double longestSide = 30000;
constexpr int leastReadable = 12;

}  // namespace

GreyPicture atReadingSize(const Ink& ink) {
    const double width = ink.picture.width;
    const double height = ink.picture.height;
    // Small print below a headline must not vanish; where all is large, it may become a tenth.
    const double least = std::min(0.5, double(leastReadable) / ink.smallLetterHeight);
    const double wanted = std::clamp(double(readingHeight) / ink.letterHeight, least, 4.0);
    return resized(ink.picture,
                   std::min({wanted, std::sqrt(mostPixels / (width * height)), longestSide / std::max(width, height)}));
}
