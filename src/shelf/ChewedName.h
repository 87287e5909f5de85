#pragma once

#include <QByteArray>
#include <vector>

#include "shelf/Chewer.h"

/// Names for a chewed file: the source's name without its extension, a suffix for the mode, and a number if that name
/// is taken. The source's name may contain any bytes; the results are at most `maxLength` bytes long.
class ChewedName {
 public:
    ChewedName(const QByteArray& sourceName, Chewer::Mode mode);

    QByteArray plain(qsizetype maxLength) const;
    QByteArray numbered(int number, qsizetype maxLength) const;

    /// The numbers to try, in order: those of two digits shuffled, then the following ones.
    static std::vector<int> numbers();

 private:
    QByteArray withEnd(const QByteArray& end, qsizetype maxLength) const;

    QByteArray stem_;
    QByteArray suffix_;
    QByteArray extension_;
};
