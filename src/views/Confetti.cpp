#include "views/Confetti.h"

#include <array>
#include <cmath>
#include <numbers>

#include "views/Colors.h"
#include "views/PieceIds.h"
#include "views/Shapes.h"

namespace {

constexpr int kSparks = 10;
constexpr double kBurstPoint = 36;  // below the top of the panel, just under a camera housing
constexpr double kMaxFlight = 46;
constexpr double kLift = 6;  // points that the ring is above its centre
constexpr double kMaxSpark = 7;
constexpr double kReach = kMaxFlight + kLift + kMaxSpark;

}  // namespace

void Confetti::burst() {
    const std::array palette{accentOrange(), eyeWhite(), QColor::fromRgbF(1.0F, 0.5F, 0.7F),
                             QColor::fromRgbF(0.5F, 0.85F, 1.0F)};
    const auto uniform = [this](double min, double max) { return min + random_() * (max - min); };
    sparks_.clear();
    ++burst_;
    for (int n = 0; n < kSparks; ++n) {
        const double angle = double(n) / kSparks * 2 * std::numbers::pi + uniform(-0.3, 0.3);
        const double distance = uniform(26, kMaxFlight);
        sparks_.push_back({{distance * std::cos(angle), distance * std::sin(angle) - kLift},
                           palette[size_t(n) % palette.size()],
                           uniform(4, kMaxSpark)});
    }
    flight_.jump(0);
    launch_ = context_.loop.after(0, [this] {
        flight_.aim(1, Animation::easeOut(0.7), context_.now());
        context_.changed();
    });
}

void Confetti::compose(DisplayList& list, double now) const {
    const double flown = flight_.at(now);
    if (sparks_.empty() || flown >= 1) return;
    const QRectF bounds(-kReach, kBurstPoint - kReach, 2 * kReach, 2 * kReach);
    list.add(piece::confetti, bounds, {flown, burst_}, [sparks = sparks_, flown](Canvas& canvas) {
        canvas.with(QTransform(), 1 - flown, [&] {
            for (const Spark& spark : sparks)
                canvas.fill(circle(QPointF(0, kBurstPoint) + spark.flight * flown, spark.size), spark.color);
        });
    });
}
