#pragma once

#include <QPainter>
#include <QPointF>
#include <QRectF>
#include <QRegion>
#include <functional>

/// The borderless window that the creature lives in: above everything, on every desktop, never focused. Main thread
/// only.
///
/// Screen rectangles and points have y growing upwards (see Screen); what is inside the window has its origin at the
/// top left and y growing downwards. All lengths are points.
class PanelWindow {
 public:
    enum class Button { left, right, middle };

    virtual ~PanelWindow() = default;

    /// Moves and resizes the window to a rectangle of the screen.
    virtual void setFrame(const QRectF& frame) = 0;
    /// Where the window is now.
    virtual QRectF frame() const = 0;
    /// Makes the window visible and puts it in front of all others.
    virtual void orderFrontRegardless() = 0;

    /// Where the window takes the pointer; everywhere else, and everywhere if empty, clicks reach what lies below.
    virtual void setInputRegion(const QRegion& region) = 0;
    /// What the picture covers: the window's own shape where the desktop cannot blend a translucent one, else unused.
    virtual void setOutline(const QRegion& outline) = 0;

    /// Device pixels per point at the place where the window is.
    virtual double devicePixelRatio() const = 0;
    /// Pictures per second that the screen shows there.
    virtual double refreshRate() const = 0;

    /// Draws inside `damage`: clears it, calls `draw` with a painter in points that is clipped to it, and shows the
    /// result. Nothing is drawn while the window is not visible.
    virtual void paint(const QRegion& damage, const std::function<void(QPainter&)>& draw) = 0;

    /// A button went down inside the window; `position` inside the window, `pointer` on the screen.
    std::function<void(Button button, QPointF position, QPointF pointer)> onPress;
    /// The pointer moved while a button pressed inside the window is held. Sampled at display rate.
    std::function<void(QPointF pointer)> onDrag;
    std::function<void(Button button, QPointF pointer)> onRelease;
    /// A drag of files, links, text or an image came over the window (true) or left it. A drop itself is refused, and
    /// so stays with its source.
    std::function<void(bool targeted)> onDropTargeted;
    /// All of the window must be drawn again: it was exposed, or its device pixel ratio changed.
    std::function<void()> onExpose;
};
