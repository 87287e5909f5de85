#include "shelf/NoteText.h"

#include <QTextBoundaryFinder>

namespace {

constexpr int kMostCharacters = 400;
// Nobody writes a character of more code units; piles of accents without end must not fill the preferences.
constexpr qsizetype kMostUnits = qsizetype(kMostCharacters) * 40;

}  // namespace

QString firstCharacters(const QString& text) {
    const QString beginning = text.left(kMostUnits);
    QTextBoundaryFinder finder(QTextBoundaryFinder::Grapheme, beginning);
    qsizetype end = 0;
    for (int i = 0; i < kMostCharacters; ++i) {
        const qsizetype next = finder.toNextBoundary();
        if (next < 0 || (next == kMostUnits && text.size() > kMostUnits)) break;
        end = next;
    }
    return beginning.left(end);
}
