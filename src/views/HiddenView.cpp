#include "views/HiddenView.h"

#include <utility>

#include "views/Colors.h"
#include "views/PieceIds.h"

void HiddenView::update(const std::optional<Animation>& how) {
    const bool hovering = context_.model.hovering;
    const bool hoverChanged = std::exchange(seenHovering_, hovering) != hovering;
    chevron_.aim(opacity(), hoverChanged ? Animation::easeInOut(0.25) : how, context_.now());
}

void HiddenView::compose(DisplayList& list, const QRectF& body) const {
    constexpr double kSize = 9;
    const QPointF bottom(0, body.bottom() - 1);
    const QRectF bounds(-kSize, bottom.y() - 2 * kSize, 2 * kSize, 3 * kSize);
    list.with(QTransform(), chevron_.at(context_.now()), [&] {
        list.add(piece::chevron, bounds, {bottom}, [=](Canvas& canvas) {
            canvas.symbol(QStringLiteral("chevron.compact.down"), bottom, kSize, white(1),
                          Qt::AlignHCenter | Qt::AlignBottom);
        });
    });
}
