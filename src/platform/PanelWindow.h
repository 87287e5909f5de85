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
/// Screen rectangles and points have y growing upwards (see Screen); what is inside the window has its origin at the
/// top left of its frame and y growing downwards. All lengths are points.
class PanelWindow {
 public:
    enum class Button { left, right, middle };

    /// Whoever deals with what happens to the window.
    class Listener {
     public:
        virtual ~Listener() = default;

        /// All of the window must be drawn again: it was exposed, or its device pixel ratio changed.
        virtual void exposed() {}

        /// A button went down inside the window; `position` inside the window, `pointer` on the screen.
        virtual void pressed(Button, QPointF /*position*/, QPointF /*pointer*/) {}
        /// The pointer moved while a button pressed inside the window is held. Sampled at display rate.
        virtual void dragged(QPointF /*pointer*/) {}
        virtual void released(Button, QPointF /*pointer*/) {}

        /// A drag of files, links, text, an image or a promised file came over the window (true), or left it or was
        /// dropped (false). The window's own drags are none of these.
        virtual void dropTargeted(bool) {}
        /// Whether a drop would be taken now; asked while a drag is over the window.
        virtual bool acceptsDrop() { return false; }
        /// Something was dropped on the window while acceptsDrop() held.
        virtual void dropped(std::shared_ptr<Drop>) {}
    };

    virtual ~PanelWindow() = default;

    /// `listener` must outlive the window or be replaced before its end; null: nobody listens.
    void setListener(Listener* listener) { listener_ = listener ? listener : &nobody_; }
    Listener& listener() const { return *listener_; }

    /// Moves and resizes the window to a rectangle of the screen.
    virtual void setFrame(const QRectF& frame) = 0;
    /// Where the window is now, as the desktop has it. May wait for the desktop.
    virtual QRectF frame() const = 0;
    /// How far the picture may reach beyond the frame; nothing unless told.
    virtual void setOverdraw(const QMargins& points) = 0;
    /// Makes the window visible and puts it in front of all others.
    virtual void orderFrontRegardless() = 0;

    /// Where the window takes the pointer; everywhere else, and everywhere if empty, clicks reach what lies below.
    virtual void setInputRegion(const QRegion& region) = 0;
    /// What the picture covers, in points: the window's own shape where the desktop cannot blend a translucent one,
    /// else unused. Each row crosses it once from the left to the right. The next paint() or
    /// orderFrontRegardless() gives the window this shape.
    virtual void setOutline(const QPainterPath& outline) = 0;

    /// Device pixels per point at the place where the window is.
    virtual double devicePixelRatio() const = 0;
    /// Pictures per second that the screen shows there.
    virtual double refreshRate() const = 0;

    /// Draws inside `damage`: clears it, calls `draw` with a painter in points that is clipped to it, and shows the
    /// result. Nothing is drawn while the window is not visible.
    virtual void paint(const QRegion& damage, const std::function<void(QPainter&)>& draw) = 0;

    /// Begins to drag `file` out of the window, while a button is held in it: other programs take a copy of the file.
    /// `icon` goes along under the pointer, `grip` (points) being the place in it where the pointer is. Returns at
    /// once; no release follows this press.
    virtual void dragOut(const QUrl& file, const QImage& icon, QPointF grip) = 0;

 private:
    Listener nobody_;
    Listener* listener_ = &nobody_;
};
