#include "platform/linux/PlainLine.h"

namespace {

constexpr qsizetype kMaxLength = 300;

bool isUnseen(QChar c) {
    constexpr QChar kJoiner(0x200d);  // of emoji
    return c.category() == QChar::Other_Control || (c.category() == QChar::Other_Format && c != kJoiner);
}

}  // namespace

QString plainLine(const QString& text) {
    // Blanks first, some of which are control characters; and those again between which something was.
    QString line = text.left(4 * kMaxLength).simplified();
    line = line.removeIf(isUnseen).simplified().left(kMaxLength);
    if (line.size() == kMaxLength && line.back().isHighSurrogate()) line.chop(1);
    return line;
}
