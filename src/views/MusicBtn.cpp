#include "views/MusicBtn.h"

#include <cmath>

#include "views/Colors.h"

namespace {

constexpr double kSize = 12;
constexpr double kHoverScale = 1.12;

}  // namespace

void MusicBtn::compose(DisplayList& list, int id, const QString& glyph, double now) const {
    const double hover = hover_.at(now), scale = std::lerp(1, kHoverScale, hover);
    list.with(QTransform::fromScale(scale, scale) * QTransform::fromTranslate(middle_.x(), middle_.y()), 1, [&] {
        list.add(id, frame().translated(-middle_), {glyph, hover}, [glyph, hover](Canvas& canvas) {
            canvas.symbol(glyph, {0, 0}, kSize, white(0.8 * (1 - hover)));
            canvas.symbol(glyph, {0, 0}, kSize, accentOrange(hover));
        });
    });
}
