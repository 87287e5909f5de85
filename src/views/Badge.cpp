#include "views/Badge.h"

#include <algorithm>
#include <utility>

#include "views/Colors.h"
#include "views/PieceIds.h"
#include "views/Shapes.h"

namespace {

const TextStyle kStyle{9.5, QFont::Bold, Face::rounded};

}  // namespace

void Badge::show(bool shown, int count, const std::optional<Animation>& how, double now) {
    presence_.aim(shown ? 1 : 0, how.value_or(Animation::easeOut(0.12)), now);
    if (!shown || std::exchange(count_, count) == count) return;
    width_ = std::max(Canvas::textWidth(QString::number(count), kStyle) + 12, 14.5);
}

void Badge::compose(DisplayList& list, double top, double now) const {
    const QRectF frame(-width_ / 2, top, width_, kStyle.lineHeight() + 3);
    list.with(QTransform(), presence_.at(now), [&] {
        list.add(piece::badge, frame, {count_, frame}, [frame, count = count_](Canvas& canvas) {
            // Mixed with the black body beforehand, because Qt paints translucent fills with several threads.
            const QColor ground = mixed(black(1), accentOrange(), 0.85);
            canvas.fill(continuousCapsule(frame), ground);
            canvas.text(QString::number(count), frame.center(), kStyle, mixed(ground, white(1), 0.75));
        });
    });
}
