#pragma once

#include <QFont>

/// The faces that the creature writes in.
enum class Face { system, rounded, monospaced };

/// The desktop's face of that kind at 100 pixels; whoever draws scales it, so that text is the same at any ratio. The
/// rounded face is the first installed of a short list, else the system face.
QFont font(Face face, QFont::Weight weight);
