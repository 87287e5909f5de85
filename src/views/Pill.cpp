#include "views/Pill.h"

#include <algorithm>

#include "views/Colors.h"
#include "views/PieceIds.h"
#include "views/Shapes.h"

void Pill::show(const std::optional<Look>& look, const std::optional<Animation>& how, double now) {
    const bool seen = presence_.at(now) > 0;
    presence_.aim(look ? 1 : 0, how, now);
    if (!look) return;
    // A pill that was not visible appears in its place without moving there.
    const auto curve = seen ? how : std::nullopt;
    middle_.aim(look->frame.center(), curve, now);
    size_.aim({look->frame.width(), look->frame.height()}, curve, now);
    fill_.aim(look->fillOpacity, curve, now);
    if (!labels_.empty() && labels_.back().text == look->text) return;
    const int number = labels_.empty() ? 0 : labels_.back().number + 1;
    if (labels_.size() > 1) labels_.pop_front();
    if (!labels_.empty()) labels_.back().presence.aim(0, curve, now);
    labels_.push_back(
        {look->text, look->style, look->textOpacity, look->frame.width(), number, {animations_, 0, 0.002}});
    labels_.back().presence.aim(1, curve, now);
}

QRectF Pill::frame(double now) const {
    const QPointF middle = middle_.at(now), size = size_.at(now);
    return {middle.x() - size.x() / 2, middle.y() - size.y() / 2, size.x(), size.y()};
}

bool Pill::contains(const QPointF& point, double now) const {
    return presence_.target() == 1 && frame(now).contains(point);
}

void Pill::compose(DisplayList& list, double now) const {
    const QRectF place = frame(now);
    const double fill = fill_.at(now);
    list.with(QTransform(), presence_.at(now), [&] {
        list.add(piece::pill, place, {place, fill},
                 [=](Canvas& canvas) { canvas.fill(continuousCapsule(place), white(fill)); });
        for (const Label& label : labels_) {
            const double scale = std::min(1.0, place.width() / label.width);
            const QTransform middle =
                QTransform::fromScale(scale, scale) * QTransform::fromTranslate(place.center().x(), place.center().y());
            const QRectF bounds(-label.width / 2, -place.height() / 2, label.width, place.height());
            list.with(middle, label.presence.at(now), [&] {
                list.add(piece::pillLabels + label.number % 2, bounds, {label.text},
                         [=](Canvas& canvas) { canvas.text(label.text, {}, label.style, white(label.opacity)); });
            });
        }
    });
}
