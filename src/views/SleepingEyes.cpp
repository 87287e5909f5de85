#include "views/SleepingEyes.h"

#include <cmath>

#include "views/Colors.h"
#include "views/PieceIds.h"
#include "views/Shapes.h"

namespace {

constexpr double kPeriod = 2;  // seconds
constexpr double kGap = 8;     // points below the eyes
constexpr double kHeight = 10;
constexpr double kRise = 14;
constexpr double kDrift = 6;

}  // namespace

void SleepingEyes::aim(const FaceGeometry& face, bool dreaming, const std::optional<Animation>& how, double now) {
    width_.aim(face.arcWidth, how, now);
    height_.aim(face.arcHeight, how, now);
    droop_.aim(face.arcDroop, how, now);
    zzz_.aim(dreaming ? 1 : 0, how, now);
}

void SleepingEyes::compose(DisplayList& list, double top, double gap, double now, double wallTime) const {
    const double w = width_.at(now), h = height_.at(now), droop = droop_.at(now);
    const QRectF arcs(-gap / 2 - w - 2, top - 2, gap + 2 * w + 4, h + 4);
    list.add(piece::sleepingArcs, arcs, {top, w, droop, gap}, [=](Canvas& canvas) {
        for (const double left : {-gap / 2 - w, gap / 2})
            canvas.stroke(lashLine(w, droop).translated(left, top), eyeWhite(), 3);
    });

    const double p = std::fmod(wallTime, kPeriod) / kPeriod;
    const QPointF place(12 + kDrift * p, top + h + kGap + kHeight / 2 - kRise * p);
    list.with(QTransform(), zzz_.at(now), [&] {
        list.add(piece::zzz, QRectF(place.x() - 6, place.y() - 8, 12, 16), {p, place.y()}, [=](Canvas& canvas) {
            canvas.text(QStringLiteral("z"), place, {11, QFont::Bold, Face::rounded}, white((1 - p) * 0.5));
        });
    });
}
