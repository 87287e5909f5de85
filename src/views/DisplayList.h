#pragma once

#include <QRegion>
#include <QTransform>
#include <functional>
#include <initializer_list>
#include <vector>

#include "views/Canvas.h"
#include "views/PictureKey.h"

/// What is on the panel at one moment: pieces from back to front, each with the place that it covers and the values
/// that decide its look. Two lists tell by their pieces what changed between two frames, so that only that is painted
/// again.
class DisplayList {
 public:
    using Draw = std::function<void(Canvas&)>;

    /// Adds a piece in the present frame of reference. `id` is unique in the list and stays with the piece from frame
    /// to frame; `look` holds every value that `draw` depends on besides the transform, the opacity and the clip.
    /// Inside `solid` the piece has one plain colour, whatever its look: where that stays, nothing has to be painted
    /// again.
    void add(int id, const QRectF& bounds, PictureKey look, Draw draw, const QRectF& solid = {});

    /// What `compose` adds is transformed by `transform` (first) and faded by `opacity`.
    void with(const QTransform& transform, double opacity, const std::function<void()>& compose);
    /// What `compose` adds is cut off at a continuous rectangle.
    void clipped(const QRectF& rect, double radius, const std::function<void()>& compose);

    /// The pixels of the panel, in points, that look different in `other`.
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
