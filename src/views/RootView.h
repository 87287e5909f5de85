#pragma once

#include <QPainterPath>
#include <functional>
#include <memory>
#include <optional>

#include "creature/NotchModel.h"
#include "motion/Animated.h"
#include "views/Confetti.h"
#include "views/CritterView.h"
#include "views/DisplayList.h"

/// Everything on the panel: the black body that hangs from the notch, what it shows, and the movements of the whole.
/// Coordinates are points of the panel, y growing downwards. Main thread only; the references must outlive it.
class RootView {
 public:
    static constexpr double kPanelWidth = 360;
    static constexpr double kPanelHeight = 230;
    /// Points beside the panel that the picture may reach: the widest body with its flares and its shadow, squashed by
    /// a boop while it bulges. A multiple of four, so that it is whole in device pixels.
    static constexpr int kOverdraw = 52;

    /// `random` gives uniformly distributed numbers in [0, 1).
    RootView(NotchModel& model, ChipPorts ports, Clock& clock, MainLoop& loop, std::function<double()> random);

    /// Called when the picture has changed or begun to move.
    std::function<void()> onChange;
    /// Called four times a second, when the creature breathes.
    std::function<void()> onBreath;

    /// What is on screen now.
    void compose(DisplayList& list);
    /// When the picture must be drawn next if nothing else happens: Clock::uptime(), or infinity.
    double nextFrame() const;
    /// How far down the picture reaches, its shadow included, once the body has its size; also while it wobbles.
    double depth() const;
    /// Whether the body is on its way to another size.
    bool growing() const { return height_.moving(clock_.uptime()); }
    /// The body's outline as it is drawn now; the panel is transparent elsewhere.
    QPainterPath outline() const;

    /// The pointer is at `point` now, or away from the panel.
    void pointerMoved(const std::optional<QPointF>& point);
    /// A press begins; tells whether it is on a chip's remove button.
    bool press(const QPointF& point);
    /// Ends a press on a remove button, released `way` points from where it began.
    void release(const QPointF& way);
    /// Ends any other press that was a tap.
    void tap(const QPointF& point);
    /// The chip that the press is on; null for none. It lives until the model changes.
    const Chip* pressedChip();
    /// The chip at `point`; null for none. It lives until the model changes.
    const Chip* chipAt(const QPointF& point);
    /// The pointer has been pulled sideways by `translation` points since it was pressed. Begins a slide or goes on
    /// with it.
    void slide(double translation);
    void slideEnded();

 private:
    void modelChanged(const std::optional<Animation>& how);
    void aimBody(const std::optional<Animation>& how, double now);
    void followBoops(double now);
    void showOrHideCritter(const std::optional<Animation>& how, double now);
    void breathe();
    /// Lets the shelf know where the pointer is on it; either may have moved.
    void followPointer();
    void changed();

    QTransform wholeTransform(double now) const;
    QPointF inside(const QPointF& point) const;
    /// The shelf if it can be touched; null while no face is shown.
    ShelfArea* shelf();
    QRectF bodyRect(double now) const;
    void composeBody(DisplayList& list, double now) const;
    void composeChevron(DisplayList& list, double now) const;

    NotchModel& m_;
    ChipPorts ports_;
    Clock& clock_;
    MainLoop& loop_;

    Animated<double> width_, height_, bottomRadius_{14};
    Animated<double> squashX_{1, 0.0005}, squashY_{1, 0.0005}, breath_{1, 0.0001};
    Animated<double> bulgeX_{1, 0.0005}, bulgeY_{1, 0.0005};
    Animated<double> chevron_{0, 0.002};         // its opacity while the creature is hidden
    Animated<double> hiddenContent_{0, 0.002};   // presence of the hidden creature's content
    Animated<double> critterContent_{0, 0.002};  // presence of the face

    double breathPhase_ = 0;
    double slideBase_ = 0;
    int seenBoops_;
    bool seenDiskFull_ = false;
    bool seenHovering_ = false;
    std::optional<QPointF> pointer_;  // on the panel

    Confetti confetti_;
    std::unique_ptr<CritterView> critter_;
    TimerHandle breathTimer_;
    Subscription subscription_;
};
