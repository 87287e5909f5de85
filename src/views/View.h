#pragma once

#include <QPointF>
#include <QRectF>
#include <functional>
#include <limits>
#include <optional>

#include "creature/NotchModel.h"
#include "motion/Animated.h"
#include "views/DisplayList.h"
#include "views/Hit.h"
#include "views/ViewPorts.h"

/// What every view is given. All of it outlives the views.
struct ViewContext {
    NotchModel& model;
    const ViewPorts& ports;
    Clock& clock;
    MainLoop& loop;
    Animations& animations;
    /// To be called when the picture has changed or begun to move, other than by update().
    std::function<void()> changed;

    double now() const { return clock.uptime(); }
};

/// Something that the body can show. It is drawn below the origin of its frame of reference, the top centre of the
/// panel. Main thread only.
class View {
 public:
    virtual ~View() = default;

    /// Takes over the present state of the model: what differs moves with `how`, or with its own curve where it has
    /// one.
    virtual void update(const std::optional<Animation>& how) = 0;
    /// It is no longer wanted; it may go on to fade out.
    virtual void disappear() {}

    /// What is on screen now, inside `body`.
    virtual void compose(DisplayList& list, const QRectF& body) const = 0;
    /// When it looks different next although nothing is animated: Clock::uptime(), or infinity.
    virtual double nextFrame() const { return std::numeric_limits<double>::infinity(); }

    /// What lies at `point`: `below`, with what this view does there in its place.
    virtual Hit hit(const QPointF& /*point*/, Hit below) { return below; }
    /// The pointer is at `point` now, or nowhere near.
    virtual void pointerMoved(const std::optional<QPointF>& /*point*/) {}
};
