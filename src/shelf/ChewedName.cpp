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

QByteArray ChewedName::plain(qsizetype maxLength) const {
    return withEnd(suffix_ + extension_, maxLength);
}

QByteArray ChewedName::numbered(int number, qsizetype maxLength) const {
    return withEnd(suffix_ + '-' + QByteArray::number(number) + extension_, maxLength);
}

std::vector<int> ChewedName::numbers() {
    constexpr int kFirst = 10;
    constexpr int kTwoDigits = 90;
    std::vector<int> numbers(5000);
    std::iota(numbers.begin(), numbers.end(), kFirst);
    std::shuffle(numbers.begin(), numbers.begin() + kTwoDigits, std::random_device());
    return numbers;
}

QByteArray ChewedName::withEnd(const QByteArray& end, qsizetype maxLength) const {
    qsizetype size = std::min(stem_.size(), std::max<qsizetype>(maxLength - end.size(), 1));
    // Do not cut a UTF-8 character: its continuation bytes, at most three, have the form 10xxxxxx.
    if (size < stem_.size())
        for (int i = 0; i < 3 && size > 1 && (uchar(stem_[size]) & 0xc0) == 0x80; ++i) --size;
    return stem_.left(size) + end;
}
