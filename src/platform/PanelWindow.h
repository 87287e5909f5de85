#pragma once

#include <QMargins>
#include <QPainter>
#include <QPainterPath>
#include <QPointF>
#include <QRectF>
#include <QRegion>
#include <QUrl>
#include <functional>
#include <memory>

#include "platform/Drop.h"

/// The borderless window that the creature lives in: above everything, on every desktop, never focused. Main thread
/// only.
///
/// Screen rectangles and points have y growing upwards (see Screen). Coordinates inside the window start at the top
/// left of its frame, with y growing downwards. All lengths are in points.
class PanelWindow {
 public:
    enum class Button { left, right, middle };

    /// Receives the window's events.
    class Listener {
     public:
        virtual ~Listener() = default;

        /// The whole window must be redrawn: it was exposed, or its device pixel ratio changed.
        virtual void exposed() {}

        /// A button was pressed inside the window; `position` is inside the window, `pointer` on the screen.
        virtual void pressed(Button, QPointF /*position*/, QPointF /*pointer*/) {}
        /// The pointer moved while a button pressed inside the window is held. Sampled at the display's refresh rate.
        virtual void dragged(QPointF /*pointer*/) {}
        virtual void released(Button, QPointF /*pointer*/) {}

        /// A drag of files, links, text, an image or a promised file entered the window (true), or left it or was
        /// dropped (false). Not called for the window's own drags.
        virtual void dropTargeted(bool) {}
        /// Whether a drop would be accepted now; called while a drag is over the window.
        virtual bool acceptsDrop() { return false; }
        /// Something was dropped on the window while acceptsDrop() held.
        virtual void dropped(std::shared_ptr<Drop>) {}
    };

    virtual ~PanelWindow() = default;

    /// `listener` must outlive the window or be replaced before it is destroyed; null removes the listener.
    void setListener(Listener* listener) { listener_ = listener ? listener : &nobody_; }
    Listener& listener() const { return *listener_; }

    /// Moves and resizes the window to a rectangle of the screen.
    virtual void setFrame(const QRectF& frame) = 0;
    /// The window's actual frame. May block on the window system.
    virtual QRectF frame() const = 0;
    /// How far the picture may reach beyond the frame; 0 by default.
    virtual void setOverdraw(const QMargins& points) = 0;
    /// Shows the window, in front of all others.
    virtual void orderFrontRegardless() = 0;

    /// Where the window takes pointer input; clicks elsewhere pass through. Empty: it takes none.
    virtual void setInputRegion(const QRegion& region) = 0;
    /// What the picture covers, in points: becomes the window's shape if the desktop cannot blend translucent windows,
    /// and is otherwise unused. Must be a single span in each row. Takes effect at the next paint() or
    /// orderFrontRegardless().
    virtual void setOutline(const QPainterPath& outline) = 0;

    /// Device pixels per point on the window's screen.
    virtual double devicePixelRatio() const = 0;
    /// The refresh rate of the window's screen, in Hz.
    virtual double refreshRate() const = 0;

    /// Clears `damage`, calls `draw` with a painter in points that is clipped to it, and shows the result. Does nothing
    /// while the window is not visible.
    virtual void paint(const QRegion& damage, const std::function<void(QPainter&)>& draw) = 0;

    /// Starts dragging `file` out of the window while a button is held in it; other programs receive a copy. `icon`
    /// moves with the pointer, which is at `grip` (points) in it. Returns at once; no release follows this press.
    virtual void dragOut(const QUrl& file, const QImage& icon, QPointF grip) = 0;

 private:
    Listener nobody_;
    Listener* listener_ = &nobody_;
};
