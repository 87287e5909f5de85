#include "shelf/ChewedName.h"

#include <algorithm>
#include <numeric>
#include <random>

ChewedName::ChewedName(const QByteArray& sourceName, Chewer::Mode mode)
    : stem_(sourceName),
      suffix_(mode == Chewer::Mode::smaller ? "-small" : ""),
      extension_(mode == Chewer::Mode::toPNG ? ".png" : ".jpg") {
    const qsizetype dot = stem_.lastIndexOf('.');
    if (dot > 0 && dot + 1 < stem_.size()) stem_.truncate(dot);
}

QByteArray ChewedName::plain(qsizetype longest) const {
    return withEnd(suffix_ + extension_, longest);
}

QByteArray ChewedName::numbered(int number, qsizetype longest) const {
    return withEnd(suffix_ + '-' + QByteArray::number(number) + extension_, longest);
}

std::vector<int> ChewedName::numbers() {
    constexpr int kFirst = 10;
    constexpr int kTwoDigits = 90;
    std::vector<int> numbers(5000);
    std::iota(numbers.begin(), numbers.end(), kFirst);
    std::shuffle(numbers.begin(), numbers.begin() + kTwoDigits, std::random_device());
    return numbers;
}

QByteArray ChewedName::withEnd(const QByteArray& end, qsizetype longest) const {
    qsizetype size = std::min(stem_.size(), std::max<qsizetype>(longest - end.size(), 1));
    // Not in the middle of a character: its later bytes are of the form 10xxxxxx, and there are at most three.
    if (size < stem_.size())
        for (int i = 0; i < 3 && size > 1 && (uchar(stem_[size]) & 0xc0) == 0x80; ++i) --size;
    return stem_.left(size) + end;
}
