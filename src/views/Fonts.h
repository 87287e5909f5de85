#pragma once

#include <QFont>

enum class Face { system, rounded, monospaced };

/// The pixel size of all fonts. Callers scale them, so that text has the same shape at any device pixel ratio.
constexpr int kFontPixels = 100;

/// The desktop's font for `face` at kFontPixels. The rounded one is the first installed font of a short list, or else
/// the system font.
QFont font(Face face, QFont::Weight weight);
