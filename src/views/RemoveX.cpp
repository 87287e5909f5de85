#include "views/RemoveX.h"

#include <cmath>

#include "views/Colors.h"
#include "views/Shapes.h"

namespace {

constexpr double kMargin = 4;  // points around the circle that still count as a hit
constexpr double kPressedScale = 0.86;
constexpr double kRim = 0.6;

}  // namespace

bool RemoveX::hit(const QPointF& point) {
    return std::hypot(point.x(), point.y()) <= kSize / 2 + kMargin;
}

void RemoveX::press(bool pressed, double now) {
    pressed_.aim(pressed ? 1 : 0, Animation::easeOut(pressed ? 0.08 : 0.1), now);
}

void RemoveX::compose(DisplayList& list, int id, double now) const {
    const double opacity = opacity_.at(now);
    if (opacity <= 0) return;
    const double pressed = pressed_.at(now);
    const double scale = std::lerp(1, kPressedScale, pressed);
    list.with(QTransform::fromScale(scale, scale), opacity, [&] {
        const QRectF bounds(-kSize / 2 - 1, -kSize / 2 - 1, kSize + 2, kSize + 2);
        list.add(id, bounds, {pressed}, [pressed](Canvas& canvas) {
            canvas.fill(circle({0, 0}, kSize), black(std::lerp(0.92, 0.75, pressed)));
            canvas.stroke(circle({0, 0}, kSize - kRim), white(0.32), kRim);
            canvas.symbol(QStringLiteral("xmark"), {0, 0}, 7.5, white(0.95));
        });
    });
}
