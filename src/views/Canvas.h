#pragma once

#include <QCache>
#include <QFont>
#include <QPainter>
#include <QPainterPath>
#include <functional>

#include "views/Fonts.h"
#include "views/PictureKey.h"
#include "views/SoftShadows.h"
#include "views/Symbols.h"

/// What is made once and drawn often. Lives as long as the panel.
struct PictureCaches {
    SoftShadows shadows;
    Symbols symbols;
    QCache<PictureKey, QPainterPath> texts{32};
};

/// A size of text in points, as the pictures give it.
struct TextStyle {
    double size;
    QFont::Weight weight = QFont::Normal;
    Face face = Face::system;
};

/// Draws in points, crisp at any device pixel ratio. A thin layer over QPainter for the length of one frame.
class Canvas {
 public:
    /// `painter` and `caches` must outlive the canvas; `devicePixelRatio` is the painter's.
    Canvas(QPainter& painter, PictureCaches& caches, double devicePixelRatio);

    /// Runs `draw` with `transform` before the present one and everything `opacity` times as opaque, then restores
    /// both.
    void with(const QTransform& transform, double opacity, const std::function<void()>& draw);
    /// Everything that `draw` paints is cut off at `clip`.
    void clipped(const QPainterPath& clip, const std::function<void()>& draw);
    /// Paints `draw` on a sheet of its own over `bounds`, cuts the sheet to `mask`, and lays it down `opacity` opaque.
    /// So edges of different things inside the mask leave no seam, and a fading group does not show through itself.
    void layer(const QRectF& bounds, const QPainterPath& mask, double opacity,
               const std::function<void(Canvas&)>& draw);

    /// Whether nothing outside `rect` is painted in this frame.
    bool paintsOnlyIn(const QRectF& rect) const;

    void fill(const QPainterPath& path, const QBrush& brush);
    /// Fills whole device pixels; for what a layer's mask cuts to shape.
    void cover(const QRectF& rect, const QBrush& brush);
    /// Round caps and a miter limit of 10.
    void stroke(const QPainterPath& path, const QBrush& brush, double width);
    /// The shadow that `shape` casts: blurred by `radius` points, moved by `offset`. The shape itself is not drawn, nor
    /// what of the shadow is inside `hole`, where something else will cover it.
    void shadow(const QPainterPath& shape, const QColor& color, double radius, const QPointF& offset,
                const QRectF& hole = {});
    /// The symbol `name`, as large as a letter of a font of `size` points would suggest. Its square has its middle at
    /// `place`; with Qt::AlignRight or Qt::AlignBottom its ink ends there instead, in that direction.
    void symbol(const QString& name, const QPointF& place, double size, const QColor& color,
                Qt::Alignment alignment = Qt::AlignCenter);
    /// One line of text, its middle at `place`, or its left end there with Qt::AlignLeft; in height it is centred.
    void text(const QString& line, const QPointF& place, const TextStyle& style, const QColor& color,
              Qt::Alignment alignment = Qt::AlignHCenter);

    /// `image` over all of `frame`.
    void picture(const QImage& image, const QRectF& frame) { painter_.drawImage(frame, image); }

    /// Width in points that `line` takes.
    static double textWidth(const QString& line, const TextStyle& style);
    /// `line` shortened to at most `width` points, in its middle or at its end (Qt::ElideMiddle, Qt::ElideRight).
    static QString elided(const QString& line, double width, const TextStyle& style, Qt::TextElideMode where);

 private:
    QPainterPath outlineOf(const QString& line, const QFont& face, Qt::Alignment alignment);
    void drawScaled(const QRectF& bounds, const QImage& image, const QRectF& hole);

    QPainter& painter_;
    PictureCaches& caches_;
    double ratio_;
};

/// Gradient colours with their places between the start (0) and the end (1).
using Stops = QList<QPair<double, QColor>>;

/// A radial gradient around a unit point of `frame` (0 to 1 from its top left): the first colour up to `startRadius`,
/// the last from `endRadius` on, both in points.
QBrush radialGradient(const QRectF& frame, const QPointF& unitCenter, double startRadius, double endRadius,
                      const Stops& stops);
/// A linear gradient between two unit points of `frame`.
QBrush linearGradient(const QRectF& frame, const QPointF& unitFrom, const QPointF& unitTo, const Stops& stops);
