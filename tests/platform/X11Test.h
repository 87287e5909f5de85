#pragma once

#include <gtest/gtest.h>

#include "platform/linux/QtMainLoop.h"
#include "platform/linux/ScreenCoordinates.h"
#include "platform/linux/x11/X11EventMonitors.h"
#include "platform/linux/x11/X11PanelWindow.h"
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

/// What happened to a panel.
struct PanelEvents : PanelWindow::Listener {
    void pressed(PanelWindow::Button, QPointF position, QPointF) override { presses.append(position); }
    void dragged(QPointF pointer) override { drags.append(pointer); }
    void released(PanelWindow::Button, QPointF) override { ++releases; }
    void dropTargeted(bool over) override { targeted.append(over); }
    bool acceptsDrop() override { return accepts; }
    void dropped(std::shared_ptr<Drop> taken) override { drop = std::move(taken); }
    void exposed() override { expose(); }

    std::function<void()> expose;
    QList<QPointF> presses, drags;
    int releases = 0;
    bool accepts = true;
    QList<bool> targeted;
    std::shared_ptr<Drop> drop;
};

/// A panel at (200, 0) of Qt's coordinates that is red where its body is, and takes what is dropped on it.
class TestPanel : public PanelEvents, public X11PanelWindow {
 public:
    static constexpr QRect area{0, 0, 240, 120};
    static constexpr QRectF place{200, 0, 240, 120};

    TestPanel(std::shared_ptr<X11Connection> connection, std::shared_ptr<PointerSampler> sampler, MainLoop& loop)
        : X11PanelWindow(std::move(connection), std::move(sampler), loop) {
        expose = [this] { fill(area, Qt::red); };
        setListener(this);
        setOverdraw({52, 0, 52, 20});
        setFrame(toModel(place));
        shape(area);
        orderFrontRegardless();
        setInputRegion(area);
        if (!waitFor([this] { return window().isExposed(); })) throw std::runtime_error("the panel stays invisible");
        // The server takes requests of two connections in any order.
        awaitReply(qGuiApp->nativeInterface<QNativeInterface::QX11Application>()->connection(), xcb_get_input_focus,
                   xcb_get_input_focus_reply);
    }
    ~TestPanel() override { setListener(nullptr); }

    xcb_window_t id() { return xcb_window_t(window().winId()); }
    void shape(const QRectF& outline) {
        QPainterPath path;
        path.addRect(outline);
        setOutline(path);
    }
    void fill(const QRegion& damage, const QColor& colour) {
        paint(damage, [&](QPainter& painter) { painter.fillRect(body, colour); });
    }

    QRect body = area;
};
