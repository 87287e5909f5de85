#include <xcb/shape.h>

#include <QElapsedTimer>

#include "X11Test.h"

namespace {
/// Counts the events of one kind that a window gets.
class EventCount : public QObject {
 public:
    EventCount(QObject& watched, QEvent::Type type) : type_(type) { watched.installEventFilter(this); }
    bool eventFilter(QObject*, QEvent* event) override {
        count += event->type() == type_;
        return false;
    }
    int count = 0;

 private:
    QEvent::Type type_;
};

class X11Panel : public X11Test {
 protected:
    X11Panel() : panel(connection, sampler, loop) {
        panel.heard.onPress = [this](PanelWindow::Button, QPointF position, QPointF) { presses.append(position); };
        panel.heard.onRelease = [this](PanelWindow::Button) { ++releases; };
        panel.heard.onDrag = [this](QPointF pointer) { drags.append(pointer); };
    }

    xcb_window_t id() { return xcb_window_t(panel.window().winId()); }
    bool red() const { return colourAt(pixel(middle)) == QColor(Qt::red); }
    bool shaped() {
        const auto cookie = xcb_shape_query_extents(session().xcb(), id());
        const XcbPtr<xcb_shape_query_extents_reply_t> reply(
            xcb_shape_query_extents_reply(session().xcb(), cookie, nullptr));
        return reply->bounding_shaped;
    }

    const QPointF middle{320, 60};
    RedPanel panel;
    QList<QPointF> presses;
    int releases = 0;
    QList<QPointF> drags;
};

TEST_F(X11Panel, TakesClicksInsideItsInputRegionOnly) {
    // One that no click raises.
    OtherWindow below(session(), {.geometry = {0, 0, 1280, 700}, .overrideRedirect = true});
    const uint32_t lowest = XCB_STACK_MODE_BELOW;
    xcb_configure_window(session().xcb(), below.id(), XCB_CONFIG_WINDOW_STACK_MODE, &lowest);
    ASSERT_TRUE(waitFor([&] { return red(); }));
    const struct {
        QRegion region;
        QPointF place;
        bool taken;
    } cases[] = {
        {{}, middle, false},
        {QRect(100, 20, 40, 50), middle, true},
        {QRect(100, 20, 40, 50), {205, 5}, false},
        {QRegion(0, 0, 20, 20) + QRect(200, 80, 40, 40), {205, 5}, true},
        {QRegion(0, 0, 20, 20) + QRect(200, 80, 40, 40), middle, false},
        {{}, {205, 5}, false},
    };
    int taken = 0, fallen = 0;
    for (const auto& [region, place, inside] : cases) {
        panel.setInputRegionNow(region);
        session().click(pixel(place));
        ++(inside ? taken : fallen);
        ASSERT_TRUE(waitFor([&] { return presses.size() == taken && below.presses().size() == fallen; }))
            << "at " << place.x() << ", " << place.y();
    }
}

TEST_F(X11Panel, GivesWayToAProgramThatInsists) {
    ASSERT_TRUE(waitFor([&] { return red(); }));
    OtherWindow rival(session(), {.fullScreen = true});
    ASSERT_TRUE(waitFor([&] { return rival.active(); }));
    panel.orderFrontRegardless();  // right above it, where it can be covered
    int lost = 0;
    QElapsedTimer timer;
    timer.start();
    while (timer.elapsed() < 3000) {
        if (red()) {
            ++lost;
            rival.raise();
            static_cast<void>(waitFor([&] { return !red(); }, 0.1));  // may be over too soon to be seen
        }
        letPass(0.005);
    }
    EXPECT_GE(lost, 2);
    EXPECT_LE(lost, 9);
}

TEST_F(X11Panel, HasTheShapeOfItsOutlineWhereNothingBlends) {
    OtherWindow below(session(), {.colour = 0x00ff00, .fullScreen = true});
    const QPoint corner = pixel({205, 110});
    panel.heard.onExpose = [this] {
        panel.paint(QRect(0, 0, 240, 120), [](QPainter& painter) { painter.fillRect(80, 0, 80, 120, Qt::red); });
    };
    // Its left edge lies between two points: the shape is as fine as the pixels.
    panel.setOutline(RedPanel::rectangle({80.5, 0, 79.5, 120}));
    panel.heard.onExpose();
    const QPoint edge(pixel({200, 0}).x() + int(std::lround(80.5 * ratio())), pixel(middle).y());
    ASSERT_TRUE(waitFor([&] { return red() && colourAt(corner) == QColor(Qt::green); }));
    EXPECT_TRUE(shaped());
    EXPECT_EQ(colourAt(edge), QColor(Qt::red));
    EXPECT_EQ(colourAt(edge - QPoint(1, 0)), QColor(Qt::green));

    session().startCompositor();
    EXPECT_TRUE(waitFor([&] { return !shaped() && red() && colourAt(corner) == QColor(Qt::green); }));
    session().stopCompositor();
    EXPECT_TRUE(waitFor([&] { return shaped() && red() && colourAt(corner) == QColor(Qt::green); }));
}

TEST_F(X11Panel, SamplesDragsInsteadOfHearingEveryMotion) {
    panel.setInputRegionNow(QRect(0, 0, 240, 120));
    ASSERT_TRUE(waitFor([&] { return red(); }));
    EventCount motions(panel.window(), QEvent::MouseMove);
    session().glide(pixel({210, 10}), pixel(middle), 200, 1);
    EXPECT_EQ(motions.count, 0);
    session().press(1);
    ASSERT_TRUE(waitFor([&] { return presses.size() == 1; }));
    motions.count = 0;  // Qt makes up a move before a press
    EXPECT_TRUE(drags.empty());

    session().glide(pixel(middle), pixel({600, 300}), 500, 1);
    ASSERT_TRUE(waitFor([&] { return drags.endsWith(toModel(QPointF(600, 300))); }));
    EXPECT_GE(drags.size(), 10);
    EXPECT_LE(drags.size(), 500 * panel.refreshRate() / 1000 * 1.5);
    EXPECT_EQ(motions.count, 0);

    session().release(1);
    ASSERT_TRUE(waitFor([&] { return releases == 1; }));
    const auto before = drags.size();
    session().glide(pixel({600, 300}), pixel(middle), 100, 1);
    letPass(0.1);
    EXPECT_EQ(drags.size(), before);
}

TEST_F(X11Panel, RepaintsOnlyTheDamage) {
    ASSERT_TRUE(waitFor([&] { return red(); }));
    panel.fill(QRect(0, 0, 50, 50), Qt::blue);
    EXPECT_TRUE(waitFor([&] { return colourAt(pixel({249, 49})) == QColor(Qt::blue); }));
    EXPECT_EQ(colourAt(pixel({251, 49})), QColor(Qt::red));
    EXPECT_EQ(colourAt(pixel({249, 51})), QColor(Qt::red));

    panel.setFrame(toModel(RedPanel::place.translated(50, 30)));
    EXPECT_TRUE(waitFor([&] { return colourAt(pixel({299, 79})) == QColor(Qt::blue); }));
    EXPECT_EQ(panel.frame(), toModel(RedPanel::place.translated(50, 30)));
}
}  // namespace
