#pragma once

#include <QImage>

#include "platform/EventMonitors.h"
#include "platform/PanelWindow.h"
#include "platform/ScreenLock.h"
#include "platform/Screens.h"

/// Screens as the test lays them out.
class FakeScreens : public Screens {
 public:
    QList<Screen> screens() const override { return list; }
    QList<Screen> list{{QRectF(0, 0, 1512, 982), {}, {}, true}};
};

/// A window that draws into memory and remembers what it was told.
class FakePanelWindow : public PanelWindow {
 public:
    void setFrame(const QRectF& rect) override { place = rect; }
    QRectF frame() const override { return place; }
    void setOverdraw(const QMargins&) override {}
    void orderFrontRegardless() override { ++raised; }
    void setInputRegion(const QRegion& region) override { input = region; }
    void setOutline(const QPainterPath& path) override { outline = path; }
    double devicePixelRatio() const override { return 1; }
    double refreshRate() const override { return 60; }
    void paint(const QRegion& damage, const std::function<void(QPainter&)>& draw) override {
        ++paints;
        QPainter painter(&picture);
        painter.setClipRegion(damage);
        draw(painter);
    }
    void dragOut(const QUrl&, const QImage&, QPointF) override {}

    QRectF place;
    QRegion input;
    QPainterPath outline;
    int raised = 0, paints = 0;
    QImage picture{360, 230, QImage::Format_ARGB32_Premultiplied};
};

class FakeScreenLock : public ScreenLock {
 public:
    bool locked() const override { return false; }
};

class FakeMonitors : public EventMonitors {
 public:
    void start() override { started = true; }
    QPointF pointerLocation() const override { return {}; }
    bool capsLock() const override { return caps; }
    bool started = false, caps = false;
};
