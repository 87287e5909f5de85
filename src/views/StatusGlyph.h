#pragma once

#include <QColor>
#include <QString>

class NotchModel;

/// What the face adds to the model for the small symbol beside it.
struct GlyphHints {
    bool worried = false;
    bool stretching = false;
};

/// The small symbol at the top right of the creature and its colour (opaque; it is drawn at opacity 0.7).
struct StatusGlyph {
    QString symbol;  ///< empty: none
    QColor color;
    friend bool operator==(const StatusGlyph&, const StatusGlyph&) = default;
};

/// The symbol for the present state; none while nothing calls for one. `localHour` is 0 to 23.
StatusGlyph statusGlyph(const NotchModel& m, GlyphHints hints, int localHour);
