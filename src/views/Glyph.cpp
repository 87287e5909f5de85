#include "views/Glyph.h"

#include "views/PieceIds.h"

namespace {

constexpr double kSize = 11;
constexpr double kOpacity = 0.7;
constexpr double kRight = 30;  // points between its ink and the body's edge
constexpr double kTop = 6;

}  // namespace

void Glyph::show(const StatusGlyph& glyph, const std::optional<Animation>& how, double now) {
    opacity_.aim(glyph.symbol.isEmpty() ? 0 : kOpacity, how, now);
    if (!glyph.symbol.isEmpty()) glyph_ = glyph;
}

void Glyph::compose(DisplayList& list, double right, double now) const {
    constexpr double kBox = kSize * Canvas::kSymbolBox;
    const QPointF place(right - kRight, kTop + kBox / 2);
    list.with(QTransform(), opacity_.at(now), [&] {
        // The square of a narrow symbol extends to the right of its ink.
        const QRectF bounds(place.x() - kBox, kTop, 1.5 * kBox, kBox);
        list.add(piece::glyph, bounds, {place, glyph_.symbol, glyph_.color}, [place, glyph = glyph_](Canvas& canvas) {
            canvas.symbol(glyph.symbol, place, kSize, glyph.color, Qt::AlignRight | Qt::AlignVCenter);
        });
    });
}
