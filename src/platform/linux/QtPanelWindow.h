#pragma once

#include <QBackingStore>
#include <QWindow>
#include <memory>

#include "platform/PanelWindow.h"

class QDropEvent;

/// The panel as any Qt platform can show it: frameless, translucent, drawn by software. Buttons outside the input
/// region are ignored, but only a platform's own subclass can let them reach what lies below.
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

    /// What Qt sends drag and drop events to. Belongs to this object.
    QWindow& window() { return *window_; }

 protected:
    /// Buttons that were pressed inside and whose release has not been seen. It may never be: a menu that opens
    /// takes it.
    Qt::MouseButtons held() const { return held_; }
    virtual void pressed(QMouseEvent& event);
    /// Where the window is with its overdraw, in Qt's coordinates.
    virtual QRectF shownGeometry() const { return window_->geometry(); }
    /// Where the frame begins in the window, and with it everything that is told in points of the panel.
    QPoint origin() const { return {overdraw_.left(), overdraw_.top()}; }
    /// Clears `area` (of the window) of `device` and draws there, in points of the panel.
    void drawInto(QPaintDevice& device, const QRegion& area, const std::function<void(QPainter&)>& draw) const;
    /// The window came to another screen, or its screen's device pixel ratio changed.
    virtual void screenChanged() {}

 private:
    class Surface;

    void released(QMouseEvent& event);
    void moved(QMouseEvent& event);
    /// True if the event belongs to a drag and has been dealt with.
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
