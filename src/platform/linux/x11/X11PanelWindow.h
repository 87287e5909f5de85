#pragma once

#include <QAbstractNativeEventFilter>
#include <QImage>
#include <QPainterPath>
#include <memory>
#include <optional>

#include "platform/linux/QtPanelWindow.h"
#include "platform/linux/x11/CompositorWatch.h"
#include "platform/linux/x11/PointerSampler.h"
#include "platform/linux/x11/StackingGuard.h"
#include "platform/linux/x11/X11DropTarget.h"

/// The panel on X11: an unmanaged (override-redirect) window, on every desktop and above full-screen windows, but below
/// other unmanaged windows. Clicks outside its input region pass through. Without a compositor it is shaped to its
/// outline.
///
/// It does not receive motion events; drags are sampled.
class X11PanelWindow : public QtPanelWindow, private QAbstractNativeEventFilter {
 public:
    X11PanelWindow(const std::shared_ptr<X11Connection>& connection, std::shared_ptr<PointerSampler> sampler,
                   MainLoop& loop);
    ~X11PanelWindow() override;

    void setOverdraw(const QMargins& points) override;
    void orderFrontRegardless() override;
    void setInputRegion(const QRegion& region) override;
    void setOutline(const QPainterPath& outline) override;
    void paint(const QRegion& damage, const std::function<void(QPainter&)>& draw) override;

    /// Whether the desktop currently blends translucent windows.
    bool isBlended() const { return neverShaped_ || compositor_.running(); }
    /// Knows what lies over the panel.
    StackingGuard& stacking() { return *stacking_; }

    /// Whether an X window belongs to this program, by the id range of Qt's connection.
    static bool isOwnWindow(xcb_window_t window);

 protected:
    QRectF shownGeometry() const override;
    void pressed(QMouseEvent& event) override;
    void screenChanged() override;

 private:
    bool nativeEventFilter(const QByteArray& type, void* message, qintptr* result) override;
    void ignoreMotion();
    void prepareDrawing();
    void put(const QRect& pixels);
    void applyInputRegion();
    void applyOutline();
    /// Calls applyOutline() if the window is shaped.
    void reshape();
    void dragSampled(const PointerSampler::Sample& sample);
    xcb_window_t id() const { return id_; }

    std::shared_ptr<X11Connection> connection_;
    std::shared_ptr<PointerSampler> sampler_;
    xcb_window_t id_;
    bool neverShaped_;
    CompositorWatch compositor_;
    QRegion inputRegion_;
    QPainterPath outline_;
    std::optional<QRegion> shape_;  // the window's current shape in pixels, if it is shaped
    QImage picture_;                // what the window shows
    uint8_t depth_ = 0;
    xcb_gcontext_t context_ = XCB_NONE;
    Subscription drags_;
    std::unique_ptr<StackingGuard> stacking_;
    std::unique_ptr<X11DropTarget> drops_;
};
