#pragma once

#include <QString>

/// The first 400 grapheme clusters of `text`: no emoji, accented letter or flag is cut in half. A cluster of absurd
/// length ends the note.
QString firstCharacters(const QString& text);
