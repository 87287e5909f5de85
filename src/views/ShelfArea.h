#pragma once

#include <list>

#include "views/Chip.h"
#include "views/Pill.h"
#include "views/View.h"

/// The rows of chips below the open face, the pill that expands and collapses them, and the whispered meeting. While a
/// drag is near they step back behind the open mouth, small and faint. The origin is the top centre. Main thread only.
class ShelfArea {
 public:
    explicit ShelfArea(const ViewContext& context) : context_(context), model_(context.model) {}

    /// `top` is where the shelf will start on the panel once all animations have ended.
    void update(const std::optional<Animation>& how, double top);
    /// See View.
    double nextFrame() const;
    void compose(DisplayList& list) const;
    Hit hit(const QPointF& point, Hit below);
    void pointerMoved(const std::optional<QPointF>& point);

 private:
    struct Layout;

    Layout layout(double top) const;
    void fit(Layout& layout, double row, double top) const;
    bool wanted() const;
    bool reachable() const { return wanted() && !model_.asleep && !steppedBack(); }
    bool steppedBack() const { return model_.dropTargeted || model_.dragNear; }
    QList<HeldThing> shownThings() const;
    void arrange(const Layout& layout, const std::optional<Animation>& how);
    void whisper(const Layout& layout, const std::optional<Animation>& how);
    void hover();
    void composeWhisper(DisplayList& list) const;
    /// The chip at `place`, in the chips' coordinates; null if there is none.
    Chip* chipNear(const QPointF& place);
    /// Scales chips and pill down to fit into the body.
    QTransform fitting() const;
    /// Maps a point into the chips' coordinates.
    QPointF fitted(const QPointF& point) const { return fitting().inverted().map(point); }

    const ViewContext& context_;
    NotchModel& model_;

    std::list<Chip> chips_;  // including those that are fading out
    int chipsMade_ = 0;
    std::optional<QPointF> pointer_;  // in the chips' coordinates
    Pill pill_{context_.animations};
    QString whisper_;
    Animated<double> presence_{context_.animations, 0, 0.002}, strength_{context_.animations, 1, 0.002};
    // Fit the chips and the pill into the body.
    Animated<double> scale_{context_.animations, 1, 0.001}, drop_{context_.animations, 0};
    Animated<double> whisperShown_{context_.animations, 0, 0.002}, whisperTop_{context_.animations, 0};
};
