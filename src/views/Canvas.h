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

/// Caches of rendered shadows, symbols and text outlines. Live as long as the panel.
struct PictureCaches {
    SoftShadows shadows;
    Symbols symbols;
    QCache<PictureKey, QPainterPath> texts{32};
};

struct TextStyle {
    double size;  ///< points
    QFont::Weight weight = QFont::Normal;
    Face face = Face::system;

    double lineHeight() const { return 1.2 * size; }
};

/// Draws in points, crisp at any device pixel ratio. A thin layer over QPainter for the length of one frame.
class Canvas {
 public:
    /// `painter` and `caches` must outlive the canvas; `devicePixelRatio` is the painter's.
    Canvas(QPainter& painter, PictureCaches& caches, double devicePixelRatio);

    /// Runs `draw` with `transform` applied before the current one and with the opacity multiplied by `opacity`, then
    /// restores both.
    void with(const QTransform& transform, double opacity, const std::function<void()>& draw);
    /// Clips everything that `draw` paints to `clip`.
    void clipped(const QPainterPath& clip, const std::function<void()>& draw);
    /// Renders `draw` to an offscreen layer that covers `bounds`, masks the layer with `mask`, and draws it with
    /// `opacity`. So edges inside the mask leave no seams, and a fading group does not show through itself.
    void layer(const QRectF& bounds, const QPainterPath& mask, double opacity,
               const std::function<void(Canvas&)>& draw);

    /// Whether this frame's clip lies inside `rect`.
    bool paintsOnlyIn(const QRectF& rect) const;

    void fill(const QPainterPath& path, const QBrush& brush);
    /// Fills without antialiasing, for what a layer's mask trims.
    void cover(const QRectF& rect, const QBrush& brush);
    /// Round caps and a miter limit of 10.
    void stroke(const QPainterPath& path, const QBrush& brush, double width);
    /// Draws only the shadow of `shape`, blurred by `radius` points and moved by `offset`, and not inside `hole`, where
    /// something else will cover it.
    void shadow(const QPainterPath& shape, const QColor& color, double radius, const QPointF& offset,
                const QRectF& hole = {});
    /// A symbol's drawing is a square this many times its type size.
    static constexpr double kSymbolBox = 1.25;
    /// Draws the symbol `name` to match text of `size` points. Its square is centred at `place`; with Qt::AlignRight or
    /// Qt::AlignBottom its ink ends there in that direction.
    void symbol(const QString& name, const QPointF& place, double size, const QColor& color,
                Qt::Alignment alignment = Qt::AlignCenter);
    /// Draws one line of text, centred at `place`, or starting there with Qt::AlignLeft; always centred vertically.
    void text(const QString& line, const QPointF& place, const TextStyle& style, const QColor& color,
              Qt::Alignment alignment = Qt::AlignHCenter);

    /// Draws `image` scaled to `frame`.
    void picture(const QImage& image, const QRectF& frame) { painter_.drawImage(frame, image); }
    /// Fills `frame` with the middle of `image`, inside `shape`.
    void picture(const QImage& image, const QRectF& frame, const QPainterPath& shape);

    /// The width of `line` in points.
    static double textWidth(const QString& line, const TextStyle& style);
    /// `line` elided to at most `width` points, in its middle or at its end (Qt::ElideMiddle, Qt::ElideRight).
    static QString elided(const QString& line, double width, const TextStyle& style, Qt::TextElideMode where);

 private:
    QPainterPath outlineOf(const QString& line, const QFont& face, Qt::Alignment alignment);
    void drawScaled(const QRectF& bounds, const QImage& image, const QRectF& hole);

    QPainter& painter_;
    PictureCaches& caches_;
    double ratio_;
};

/// Colour stops of a gradient, from 0 (start) to 1 (end).
using Stops = QList<QPair<double, QColor>>;

/// A radial gradient around a unit point of `frame` (0 to 1 from its top left) between two radii, both in points.
QBrush radialGradient(const QRectF& frame, const QPointF& unitCenter, double startRadius, double endRadius,
                      const Stops& stops);
/// A linear gradient between two unit points of `frame`.
QBrush linearGradient(const QRectF& frame, const QPointF& unitFrom, const QPointF& unitTo, const Stops& stops);
