#pragma once

#include <QPainterPath>
#include <array>

#include "views/Confetti.h"
#include "views/ContentSlot.h"

/// Everything on the panel: the black body that hangs from the notch, its contents, and the animations of the whole.
/// Coordinates are points in the panel, y growing downwards. Main thread only; the references must outlive it.
class RootView {
 public:
    static constexpr double kPanelWidth = 360;
    static constexpr double kPanelHeight = 230;
    /// How far the picture may reach beyond the panel's sides, in points: enough for the widest body with its flares
    /// and shadow, bulging and squashed by a boop. A multiple of four, so that it is a whole number of device pixels.
    static constexpr int kOverdraw = 52;

    /// `random` gives uniformly distributed numbers in [0, 1).
    RootView(NotchModel& model, ViewPorts ports, Clock& clock, MainLoop& loop, std::function<double()> random);

    /// Called when the picture has changed or started to move.
    std::function<void()> onChange;
    /// Called four times a second, when the creature breathes.
    std::function<void()> onBreath;

    /// Adds everything that is on screen now to `list`.
    void compose(DisplayList& list);
    /// When to draw the next frame if nothing else happens: Clock::uptime(), or infinity.
    double nextFrame() const;
    /// How far down the picture reaches at the body's target height, with its shadow and even while it wobbles.
    double depth() const;
    /// Whether the body's height is changing.
    bool growing() const { return height_.moving(clock_.uptime()); }
    /// The body's outline as it is drawn now; the panel is transparent elsewhere.
    QPainterPath outline() const;

    /// The pointer moved to `point`; absent when it is outside the panel.
    void pointerMoved(const std::optional<QPointF>& point);
    /// What lies at `point`.
    Hit hit(const QPointF& point);

 private:
    void modelChanged(const std::optional<Animation>& how);
    void aimBody(const std::optional<Animation>& how, double now);
    void followBoops(double now);
    void breathe();
    /// Tells the contents where the pointer is relative to them; either may have moved.
    void followPointer();
    /// The body has been dragged `offset` points to the right since it was pressed.
    void slide(double offset);
    void slideEnded();

    QTransform wholeTransform(double now) const;
    QPointF inside(const QPointF& point) const;
    QRectF bodyRect(double now) const;
    void composeBody(DisplayList& list, double now) const;

    NotchModel& model_;
    ViewPorts ports_;
    Clock& clock_;
    Animations animations_;
    ViewContext context_;

    Animated<double> width_, height_, bottomRadius_{animations_, 14};
    Animated<double> squashX_{animations_, 1, 0.0005}, squashY_{animations_, 1, 0.0005};
    Animated<double> breath_{animations_, 1, 0.0001};
    Animated<double> bulgeX_{animations_, 1, 0.0005}, bulgeY_{animations_, 1, 0.0005};

    double breathPhase_ = 0;
    double slideBase_ = 0;
    int seenBoops_;
    bool seenDiskFull_ = false;
    bool seenHovering_ = false;
    std::optional<QPointF> pointer_;  // on the panel

    Confetti confetti_;
    std::array<ContentSlot, 2> contents_;  // from back to front
    TimerHandle breathTimer_;
    Subscription subscription_;
};
