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

/// What every view can use. All of it outlives the views.
struct ViewContext {
    NotchModel& model;
    const ViewPorts& ports;
    Clock& clock;
    MainLoop& loop;
    Animations& animations;
    /// Call this when the picture has changed or started to move, other than in update().
    std::function<void()> changed;

    double now() const { return clock.uptime(); }
};

/// Something that the body can show. The origin is the top centre of the panel. Main thread only.
class View {
 public:
    virtual ~View() = default;

    /// Updates to the current state of the model: what has changed moves with `how`, or with its own curve if it has
    /// one.
    virtual void update(const std::optional<Animation>& how) = 0;
    /// Called when the view is no longer wanted; it may still fade out.
    virtual void disappear() {}

    /// Adds what is on screen now, inside `body`, to `list`.
    virtual void compose(DisplayList& list, const QRectF& body) const = 0;
    /// When the view will next look different without an animation: Clock::uptime(), or infinity.
    virtual double nextFrame() const { return std::numeric_limits<double>::infinity(); }

    /// The hit at `point`: `below`, with what this view overrides.
    virtual Hit hit(const QPointF& /*point*/, Hit below) { return below; }
    /// The pointer moved to `point`; absent when it is away from the panel.
    virtual void pointerMoved(const std::optional<QPointF>& /*point*/) {}
};
