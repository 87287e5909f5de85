#pragma once

#include <QByteArray>
#include <vector>

#include "shelf/Chewer.h"

/// What a chewed file is to be called: the source's name without its extension, what its mode adds, and a number if the
/// name alone is taken. The source's name may hold any bytes; names become no longer than `longest` bytes.
class ChewedName {
 public:
    ChewedName(const QByteArray& sourceName, Chewer::Mode mode);

    QByteArray plain(qsizetype longest) const;
    QByteArray numbered(int number, qsizetype longest) const;

    /// In the order in which they are to be tried: two digits at random, then what comes after them.
    static std::vector<int> numbers();

 private:
    QByteArray withEnd(const QByteArray& end, qsizetype longest) const;

    QByteArray stem_;
    QByteArray suffix_;
    QByteArray extension_;
};
