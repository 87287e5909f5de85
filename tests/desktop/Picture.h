#pragma once

#include <QImage>
#include <QPointF>
#include <optional>

/// What can be measured in a picture of the top of the screen, in the picture's coordinates: points, y downwards. The
/// background must be brighter than the creature's black body.

/// The black outline.
struct Body {
    double left, right, bottom;
    double width() const { return right - left; }
    double center() const { return (left + right) / 2; }
    /// Breathing makes it up to 0.8 % smaller, and edges are soft.
    bool is(double wantedWidth, double wantedHeight) const;
};

/// Absent when nothing there is black.
std::optional<Body> bodyIn(const QImage& picture);

struct SeenEye {
    QRectF white;  ///< around all that is white: of an open eye the lid hides a little at the top
    QPointF gaze;  ///< from the eye's middle to the dark pupil's
    bool open() const { return white.height() > white.width() / 2; }
};

struct Face {
    SeenEye left, right;
};

/// Absent when there are not two eyes or arcs left and right of the body's middle.
std::optional<Face> faceIn(const QImage& picture);

/// How many pixels are as colourful as confetti that has just been thrown.
int colourfulPixels(const QImage& picture);
