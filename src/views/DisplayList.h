#pragma once

#include <QRegion>
#include <QTransform>
#include <functional>
#include <vector>

#include "views/Canvas.h"
#include "views/PictureKey.h"

/// The contents of the panel in one frame: pieces from back to front, each with its bounds and the values that its look
/// depends on. Comparing two lists gives the region that changed, so that only that is repainted.
class DisplayList {
 public:
    using Draw = std::function<void(Canvas&)>;

    /// Adds a piece in the current coordinate system. `id` is unique in the list and stays the same from frame to
    /// frame; `look` holds every value that `draw` depends on besides the transform, the opacity and the clip. Inside
    /// `solid` the piece always has the same plain colour, so the parts of `solid` common to two frames are not
    /// repainted.
    void add(int id, const QRectF& bounds, PictureKey look, Draw draw, const QRectF& solid = {});

    /// Applies `transform` (before the current one) and `opacity` to what `compose` adds.
    void with(const QTransform& transform, double opacity, const std::function<void()>& compose);
    /// Clips what `compose` adds to a continuous rectangle.
    void clipped(const QRectF& rect, double radius, const std::function<void()>& compose);

    /// The region of the panel, in points, that looks different in `other`.
    QRegion changesTo(const DisplayList& other) const;

    /// Paints the pieces that touch `damage`.
    void paint(Canvas& canvas, const QRegion& damage) const;

 private:
    struct Clip {
        QRectF rect;
        double radius = 0;
        QTransform transform;
        bool on = false;
        friend bool operator==(const Clip&, const Clip&) = default;
    };
    struct Piece {
        int id;
        QRect place;  // in the panel, whole points
        QRect solid;
        QTransform transform;
        double opacity;
        Clip clip;
        PictureKey look;
        Draw draw;
        QRegion changesTo(const Piece& other) const;
    };

    std::vector<Piece> pieces_;
    QTransform transform_;
    double opacity_ = 1;
    Clip clip_;
};
