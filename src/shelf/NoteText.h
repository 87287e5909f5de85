#pragma once

#include <QString>

/// The first 400 characters of `text`, as a person counts them: no emoji, accent or flag is cut in half. A character
/// that is made of absurdly many parts ends the note.
QString firstCharacters(const QString& text);
