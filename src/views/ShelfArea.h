#pragma once

#include <list>

#include "views/Chip.h"
#include "views/Pill.h"
#include "views/View.h"

/// The rows of chips below the open face, the pill that unfolds and folds them, and the whispered meeting. While a drag
/// is near they step back behind the open mouth, small and faint. It is drawn below the origin of its frame of
/// reference, its top centre. Main thread only.
class ShelfArea {
 public:
    explicit ShelfArea(const ViewContext& context) : context_(context), model_(context.model) {}

    /// `top` is where it will begin on the panel when everything has come to rest.
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
    /// The nearest of the chips that answer at a point of the chips' own coordinates.
    Chip* chipNear(const QPointF& place);
    /// What would be too large for the body is drawn smaller.
    QTransform fitting() const;
    /// A point of the frame of reference in the chips' own coordinates.
    QPointF fitted(const QPointF& point) const { return fitting().inverted().map(point); }

    const ViewContext& context_;
    NotchModel& model_;

    std::list<Chip> chips_;  // those that fade out too
    int chipsMade_ = 0;
    std::optional<QPointF> pointer_;  // in the chips' coordinates
    Pill pill_{context_.animations};
    QString whisper_;
    Animated<double> presence_{context_.animations, 0, 0.002}, strength_{context_.animations, 1, 0.002};
    // Of the chips and the pill, to fit them into the body.
    Animated<double> scale_{context_.animations, 1, 0.001}, drop_{context_.animations, 0};
    Animated<double> whisperShown_{context_.animations, 0, 0.002}, whisperTop_{context_.animations, 0};
};
