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
    constexpr double box = kSize * 1.25;
    const QPointF place(right - kRight, kTop + box / 2);
    list.with(QTransform(), opacity_.at(now), [&] {
        // A narrow symbol's square reaches further to the right than its ink.
        const QRectF bounds(place.x() - box, kTop, 1.5 * box, box);
        list.add(piece::glyph, bounds, {place, glyph_.symbol, glyph_.color}, [place, glyph = glyph_](Canvas& canvas) {
            canvas.symbol(glyph.symbol, place, kSize, glyph.color, Qt::AlignRight | Qt::AlignVCenter);
        });
    });
}
