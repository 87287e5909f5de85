#include "shelf/NoteText.h"

#include <QTextBoundaryFinder>

namespace {

constexpr int kMaxCharacters = 400;
// No real character has more code units; endless stacks of accents must not fill the preferences.
constexpr qsizetype kMaxUnits = qsizetype(kMaxCharacters) * 40;

}  // namespace

QString firstCharacters(const QString& text) {
    const QString beginning = text.left(kMaxUnits);
    QTextBoundaryFinder finder(QTextBoundaryFinder::Grapheme, beginning);
    qsizetype end = 0;
    for (int i = 0; i < kMaxCharacters; ++i) {
        const qsizetype next = finder.toNextBoundary();
        if (next < 0 || (next == kMaxUnits && text.size() > kMaxUnits)) break;
        end = next;
    }
    return beginning.left(end);
}
