#pragma once

#include <QBackingStore>
#include <QWindow>
#include <memory>

#include "platform/PanelWindow.h"

class QDropEvent;

/// The panel on any Qt platform: frameless, translucent, rendered in software. Ignores clicks outside the input region;
/// only a subclass for the platform can pass them through.
class QtPanelWindow : public PanelWindow {
 public:
    QtPanelWindow();
    ~QtPanelWindow() override;

    void setFrame(const QRectF& frame) override;
    QRectF frame() const override;
    void setOverdraw(const QMargins& points) override;
    void orderFrontRegardless() override;
    void setInputRegion(const QRegion& region) override;
    void setOutline(const QPainterPath&) override {}
    double devicePixelRatio() const override;
    double refreshRate() const override;
    void paint(const QRegion& damage, const std::function<void(QPainter&)>& draw) override;
    void dragOut(const QUrl& file, const QImage& icon, QPointF grip) override;

    /// The underlying window. Owned by this object.
    QWindow& window() { return *window_; }

 protected:
    /// Buttons that were pressed inside and not yet released. Their release may never come: a menu that opens swallows
    /// it.
    Qt::MouseButtons held() const { return held_; }
    virtual void pressed(QMouseEvent& event);
    /// The window's actual geometry, including its overdraw, in Qt's coordinates.
    virtual QRectF shownGeometry() const { return window_->geometry(); }
    /// The frame's top left in the window: the origin of the panel's coordinates.
    QPoint origin() const { return {overdraw_.left(), overdraw_.top()}; }
    /// Clears `area` (in window coordinates) of `device` and draws there, in panel coordinates.
    void drawInto(QPaintDevice& device, const QRegion& area, const std::function<void(QPainter&)>& draw) const;
    /// The window moved to another screen, or its screen's device pixel ratio changed.
    virtual void screenChanged() {}

 private:
    class Surface;

    void released(QMouseEvent& event);
    void moved(QMouseEvent& event);
    /// Handles the events of drags; true if `event` was one.
    bool dragged(QEvent& event);
    bool takes(const QDropEvent& drag) const;
    void setTargeted(bool targeted);
    void runDrag(const QUrl& file, const QImage& icon, QPointF grip);
    void exposed();

    std::unique_ptr<QWindow> window_;
    std::unique_ptr<QBackingStore> store_;
    QMargins overdraw_;
    QRegion inputRegion_;
    Qt::MouseButtons held_;
    /// Those whose press became a drag out of the window.
    Qt::MouseButtons draggedOut_;
    bool targeted_ = false;
};
