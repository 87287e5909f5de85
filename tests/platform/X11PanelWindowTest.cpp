#include <xcb/shape.h>

#include <QElapsedTimer>

#include "X11Test.h"

namespace {
struct MotionCount : QObject {
    bool eventFilter(QObject*, QEvent* event) override {
        count += event->type() == QEvent::MouseMove;
        return false;
    }
    int count = 0;
};

class X11Panel : public X11Test {
 protected:
    X11Panel() {
        if (!waitFor([this] { return red(); })) throw std::runtime_error("nothing is drawn");
    }
    bool red() const { return colourAt(pixel(middle)) == QColor(Qt::red); }
    /// Whether the panel is what its outline says, with another window's green around, and has this for a shape.
    bool looks(bool shaped) {
        const auto cookie = xcb_shape_query_extents(session().xcb(), panel.id());
        const auto shape = owned(xcb_shape_query_extents_reply(session().xcb(), cookie, nullptr));
        return shape->bounding_shaped == shaped && red() && colourAt(pixel({205, 110})) == QColor(Qt::green);
    }

    const QPointF middle{320, 60};
    TestPanel panel{connection, sampler, loop};
};

TEST_F(X11Panel, GivesWayToAProgramThatInsists) {
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
    EXPECT_TRUE(waitFor([&] { return red(); }, 6)) << "it must not stay covered";
}

TEST_F(X11Panel, HasTheShapeOfItsOutlineWhileNothingBlends) {
    OtherWindow below(session(), {.colour = 0x00ff00, .fullScreen = true});
    panel.body = {80, 0, 80, 120};
    // Its left edge lies between two points: the shape is as fine as the pixels.
    panel.shape({80.5, 0, 79.5, 120});
    panel.fill(TestPanel::area, Qt::red);
    const QPoint edge(pixel({200, 0}).x() + int(std::lround(80.5 * ratio())), pixel(middle).y());
    ASSERT_TRUE(waitFor([&] { return looks(true); }));
    EXPECT_EQ(colourAt(edge), QColor(Qt::red));
    EXPECT_EQ(colourAt(edge - QPoint(1, 0)), QColor(Qt::green));
    session().startCompositor();
    EXPECT_TRUE(waitFor([&] { return looks(false); }));
    session().stopCompositor();
    EXPECT_TRUE(waitFor([&] { return looks(true); }));
}

TEST_F(X11Panel, SamplesDragsInsteadOfHearingEveryMotion) {
    session().moveTo(pixel(middle));
    session().press(1);
    ASSERT_TRUE(waitFor([&] { return panel.presses.size() == 1; }));
    MotionCount motions;  // Qt makes up a move before a press
    panel.window().installEventFilter(&motions);
    session().glide(pixel(middle), pixel({600, 300}), 500, 1);
    ASSERT_TRUE(waitFor([&] { return panel.drags.endsWith(toModel(QPointF(600, 300))); }));
    EXPECT_GE(panel.drags.size(), 10);
    EXPECT_LE(panel.drags.size(), 500 * panel.refreshRate() / 1000 * 1.5);
    session().release(1);
    ASSERT_TRUE(waitFor([&] { return panel.releases == 1; }));
    const auto before = panel.drags.size();
    session().glide(pixel({600, 300}), pixel(middle), 100, 1);
    letPass(0.1);
    EXPECT_EQ(panel.drags.size(), before);
    EXPECT_LE(motions.count, 1) << "Qt makes up one at the release";
}
}  // namespace
