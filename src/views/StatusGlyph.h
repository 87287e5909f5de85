#pragma once

#include <QColor>
#include <QString>

class NotchModel;

/// The face's part in choosing the status symbol, besides the model.
struct GlyphHints {
    bool worried = false;
    bool stretching = false;
};

/// The small symbol at the top right of the creature, and its colour (opaque; the view makes it translucent).
struct StatusGlyph {
    QString symbol;  ///< empty: none
    QColor color;
    friend bool operator==(const StatusGlyph&, const StatusGlyph&) = default;
};

/// The symbol for the current state; an empty one if nothing calls for it. `localHour` is 0 to 23.
StatusGlyph statusGlyph(const NotchModel& model, GlyphHints hints, int localHour);
