#pragma once

#include <gtest/gtest.h>

#include "platform/linux/QtMainLoop.h"
#include "platform/linux/ScreenCoordinates.h"
#include "platform/linux/x11/X11EventMonitors.h"
#include "platform/linux/x11/X11PanelWindow.h"
#include "support/PanelCallbacks.h"
#include "support/XSession.h"

/// Base of the suites that need a real X server, with openbox on it. Their names begin with "X11": main() starts the
/// server by that.
class X11Test : public testing::Test {
 public:
    static void setSession(XSession* session) { session_ = session; }

 protected:
    X11Test() {
        for (int button : {1, 2, 3}) session().release(button);  // where a failed test left one down
        session().moveTo({5, 700});
        connection = X11Connection::open();
        sampler = std::make_shared<PointerSampler>(connection, loop);
    }

    static XSession& session() { return *session_; }
    static double ratio() { return qGuiApp->devicePixelRatio(); }
    /// The device pixel at a place of Qt's coordinates.
    static QPoint pixel(QPointF qtPoint) { return (qtPoint * ratio()).toPoint(); }
    static QPointF modelAt(QPoint pixel) { return nativeToModel(QPointF(pixel)); }
    static QColor colourAt(QPoint pixel) { return QColor(session().screenshot(QRect(pixel, QSize(1, 1))).pixel(0, 0)); }

    QtMainLoop loop;
    std::shared_ptr<X11Connection> connection;
    std::shared_ptr<PointerSampler> sampler;

 private:
    inline static XSession* session_ = nullptr;
};

/// A panel that is red all over, at (200, 0) of Qt's coordinates.
class RedPanel : public X11PanelWindow {
 public:
    static constexpr QRectF place{200, 0, 240, 120};
    PanelCallbacks heard;

    RedPanel(std::shared_ptr<X11Connection> connection, std::shared_ptr<PointerSampler> sampler, MainLoop& loop)
        : X11PanelWindow(std::move(connection), std::move(sampler), loop) {
        setListener(&heard);
        heard.onExpose = [this] { fill(QRect(0, 0, 240, 120), Qt::red); };
        setOverdraw({52, 0, 52, 20});
        setFrame(toModel(place));
        setOutline(rectangle({0, 0, 240, 120}));
        orderFrontRegardless();
    }
    /// Returns once the server knows the region: it takes requests of two connections in any order.
    void setInputRegionNow(const QRegion& region) {
        setInputRegion(region);
        auto* connection = qGuiApp->nativeInterface<QNativeInterface::QX11Application>()->connection();
        awaitReply(connection, xcb_get_input_focus, xcb_get_input_focus_reply);
    }
    static QPainterPath rectangle(const QRectF& rect) {
        QPainterPath path;
        path.addRect(rect);
        return path;
    }
    void fill(const QRegion& damage, const QColor& colour) {
        paint(damage, [&](QPainter& painter) { painter.fillRect(0, 0, 240, 120, colour); });
    }
};
