#pragma once

#include <QPointF>
#include <QRectF>
#include <optional>

#include "creature/NotchModel.h"
#include "motion/Animated.h"
#include "views/DisplayList.h"

/// The rows below the open face where held things have their places, the pills that unfold and fold them, and the
/// whispered meeting. It is drawn around the middle of its frame of reference. Main thread only; the model must outlive
/// it.
class ShelfArea {
 public:
    explicit ShelfArea(NotchModel& model) : m_(model) {}

    void update(const std::optional<Animation>& how, double now);
    bool moving(double now) const { return presence_.moving(now); }
    /// `rowBottom` is the lower edge of the eyes.
    void compose(DisplayList& list, double now, double rowBottom) const;

    /// Unfolds or folds the shelf if `point` is on its pill (in the frame that compose() used last); tells whether it
    /// was.
    bool tap(const QPointF& point, double rowBottom);

 private:
    struct Layout;
    Layout layout(double rowBottom) const;
    bool wanted() const;

    NotchModel& m_;
    Animated<double> presence_{0, 0.002};
};
