#include <QCoreApplication>
#include <QMouseEvent>

#include "platform/linux/QtPanelWindow.h"
#include "platform/linux/ScreenCoordinates.h"
#include "support/XSession.h"

namespace {
class PlainPanel : public testing::Test {
 protected:
    void SetUp() override {
        panel.setFrame(toModel(QRectF(100, 0, 200, 100)));
        panel.setInputRegion(QRect(50, 0, 100, 50));
        panel.onPress = [this](PanelWindow::Button button, QPointF position, QPointF pointer) {
            EXPECT_EQ(toQt(pointer), position + QPointF(100, 0));
            events += QStringLiteral("press%1 ").arg(int(button));
        };
        panel.onDrag = [this](QPointF) { events += QStringLiteral("drag "); };
        panel.onRelease = [this](PanelWindow::Button button, QPointF) {
            events += QStringLiteral("release%1 ").arg(int(button));
        };
    }
    void send(QEvent::Type type, QPointF place, Qt::MouseButton button, Qt::MouseButtons buttons) {
        QMouseEvent event(type, place, place + QPointF(100, 0), button, buttons, Qt::NoModifier);
        QCoreApplication::sendEvent(&panel.window(), &event);
    }

    QtPanelWindow panel;
    QString events;
};

TEST_F(PlainPanel, FollowsAPressThatBeganInsideTheInputRegion) {
    const QPointF inside{60, 10}, outside{10, 10};
    send(QEvent::MouseButtonPress, outside, Qt::LeftButton, Qt::LeftButton);
    send(QEvent::MouseMove, inside, Qt::NoButton, Qt::LeftButton);
    send(QEvent::MouseButtonRelease, inside, Qt::LeftButton, Qt::NoButton);
    EXPECT_EQ(events, QString());

    send(QEvent::MouseButtonPress, inside, Qt::LeftButton, Qt::LeftButton);
    send(QEvent::MouseMove, outside, Qt::NoButton, Qt::LeftButton);
    send(QEvent::MouseButtonPress, outside, Qt::RightButton, Qt::LeftButton | Qt::RightButton);
    send(QEvent::MouseButtonRelease, outside, Qt::LeftButton, Qt::RightButton);
    send(QEvent::MouseButtonRelease, outside, Qt::RightButton, Qt::NoButton);
    send(QEvent::MouseMove, inside, Qt::NoButton, Qt::NoButton);
    EXPECT_EQ(events, QStringLiteral("press0 drag press1 release0 release1 "));
}

TEST_F(PlainPanel, DrawsWhileVisibleOnlyAndAllOfItAfterAResize) {
    QRectF clip;
    const auto draw = [&](QPainter& painter) { clip = painter.clipBoundingRect(); };
    panel.paint(QRect(0, 0, 20, 20), draw);
    EXPECT_TRUE(clip.isNull());

    panel.orderFrontRegardless();
    ASSERT_TRUE(waitFor([&] { return panel.window().isExposed(); }));
    panel.paint(QRect(0, 0, 20, 20), draw);
    EXPECT_EQ(clip, QRectF(0, 0, 200, 100));
    panel.paint(QRect(0, 0, 20, 20), draw);
    EXPECT_EQ(clip, QRectF(0, 0, 20, 20));
    clip = {};
    panel.paint(QRect(500, 0, 20, 20), draw);
    EXPECT_TRUE(clip.isNull()) << "nothing of that is inside";

    panel.setFrame(toModel(QRectF(100, 0, 220, 110)));
    ASSERT_TRUE(waitFor([&] { return panel.window().size() == QSize(220, 110); }));
    panel.paint(QRect(0, 0, 20, 20), draw);
    EXPECT_EQ(clip, QRectF(0, 0, 220, 110));
    EXPECT_EQ(panel.frame(), toModel(QRectF(100, 0, 220, 110)));
}
}  // namespace
