#include <gmock/gmock.h>

#include <QMimeData>
#include <QMouseEvent>

#include "X11Test.h"

namespace {
/// The panel as it is where there is no X server.
class PlainPanel : public testing::Test, public PanelEvents {
 protected:
    void SetUp() override {
        panel.setFrame(toModel(QRectF(100, 0, 200, 100)));
        panel.setInputRegion(QRect(50, 0, 100, 50));
        panel.setListener(this);
        accepts = false;
        expose = [] {};
    }
    void pressed(PanelWindow::Button button, QPointF position, QPointF pointer) override {
        EXPECT_EQ(toQt(pointer), position + QPointF(100, 0));
        events += QStringLiteral("press%1 ").arg(int(button));
    }
    void dragged(QPointF) override { events += QStringLiteral("drag "); }
    void released(PanelWindow::Button button, QPointF) override {
        events += QStringLiteral("release%1 ").arg(int(button));
    }

    void send(QEvent::Type type, QPointF place, Qt::MouseButton button, Qt::MouseButtons buttons) {
        QMouseEvent event(type, place, place + QPointF(100, 0), button, buttons, Qt::NoModifier);
        QCoreApplication::sendEvent(&panel.window(), &event);
    }
    /// A drag of `offer` comes over the window and is dropped there; whether each was accepted.
    QList<bool> drops(const QMimeData& offer) {
        const auto actions = Qt::CopyAction | Qt::MoveAction;
        QDragEnterEvent enter({60, 10}, actions, &offer, Qt::LeftButton, Qt::NoModifier);
        QDropEvent end({60, 10}, actions, &offer, Qt::LeftButton, Qt::NoModifier);
        for (QEvent* event : {static_cast<QEvent*>(&enter), static_cast<QEvent*>(&end)})
            QCoreApplication::sendEvent(&panel.window(), event);
        EXPECT_EQ(end.dropAction(), Qt::CopyAction) << "the source would delete what was moved";
        return {enter.isAccepted(), end.isAccepted()};
    }

    QtPanelWindow panel;
    QString events;
    const QPointF inside{60, 10}, outside{10, 10};
};

TEST_F(PlainPanel, FollowsAPressThatBeganInsideTheInputRegion) {
    send(QEvent::MouseButtonPress, outside, Qt::LeftButton, Qt::LeftButton);
    send(QEvent::MouseMove, inside, Qt::NoButton, Qt::LeftButton);
    send(QEvent::MouseButtonRelease, inside, Qt::LeftButton, Qt::NoButton);
    send(QEvent::MouseButtonPress, inside, Qt::LeftButton, Qt::LeftButton);
    send(QEvent::MouseMove, outside, Qt::NoButton, Qt::LeftButton);
    send(QEvent::MouseButtonPress, outside, Qt::RightButton, Qt::LeftButton | Qt::RightButton);
    send(QEvent::MouseButtonRelease, outside, Qt::LeftButton, Qt::RightButton);
    send(QEvent::MouseButtonRelease, outside, Qt::RightButton, Qt::NoButton);
    send(QEvent::MouseMove, inside, Qt::NoButton, Qt::NoButton);
    EXPECT_EQ(events, QStringLiteral("press0 drag press1 release0 "))
        << "the first was outside, and the release of the right button is the menu's";
}

TEST_F(PlainPanel, BeginsNoDragOnceTheButtonIsUp) {
    for (int round = 0; round < 2; ++round) {
        send(QEvent::MouseButtonPress, inside, Qt::LeftButton, Qt::LeftButton);
        panel.dragOut(QUrl(QStringLiteral("file:///a")), QImage(10, 10, QImage::Format_RGB32), {});
        send(QEvent::MouseMove, inside, Qt::NoButton, Qt::LeftButton);
        send(QEvent::MouseButtonRelease, inside, Qt::LeftButton, Qt::NoButton);
        QCoreApplication::processEvents();  // a drag would not return
    }
    EXPECT_EQ(events, QStringLiteral("press0 press0 "));
}

TEST_F(PlainPanel, TakesDropsWhileItAcceptsThem) {
    QMimeData offer, colour;
    colour.setColorData(QColor(Qt::red));
    offer.setData(QStringLiteral("a/a"), "1");
    offer.setText(QStringLiteral("caf\u00e9"));
    offer.setUrls({QUrl(QStringLiteral("file:///a%20%FF"))});
    EXPECT_EQ(drops(offer), (QList{false, false}));
    accepts = true;
    EXPECT_EQ(drops(colour), (QList{false, false}));
    EXPECT_EQ(drops(offer), (QList{true, true}));
    EXPECT_EQ(targeted, (QList{true, false}));
    ASSERT_NE(drop, nullptr);
    offer.clear();
    const QString text = QStringLiteral("text/plain;charset=utf-8"), uris = QStringLiteral("text/uri-list");
    EXPECT_THAT(drop->types(), testing::UnorderedElementsAre(text, uris));
    QList<std::optional<QByteArray>> loaded;
    for (const QString& type : {text, uris, QStringLiteral("a/a")})
        drop->load(type, [&](const auto& bytes) { loaded.append(bytes); });
    EXPECT_EQ(loaded, (QList<std::optional<QByteArray>>{"caf\xc3\xa9", "file:///a%20%FF\r\n", std::nullopt}));
}

TEST_F(PlainPanel, DrawsWhileVisibleOnlyAndAllOfItAfterAResize) {
    const auto drawn = [this](const QRect& damage) {
        QRectF clip;
        panel.paint(damage, [&](QPainter& painter) { clip = painter.clipBoundingRect(); });
        return clip;
    };
    const QRect corner(0, 0, 20, 20);
    EXPECT_TRUE(drawn(corner).isNull());
    panel.orderFrontRegardless();
    ASSERT_TRUE(waitFor([&] { return panel.window().isExposed(); }));
    EXPECT_EQ(drawn(corner), QRectF(0, 0, 200, 100));
    EXPECT_EQ(drawn(corner), QRectF(corner));
    EXPECT_TRUE(drawn({500, 0, 20, 20}).isNull()) << "nothing of that is inside";

    const QRectF moved = toModel(QRectF(100, 0, 220, 110));
    panel.setFrame(moved);
    ASSERT_TRUE(waitFor([&] { return panel.window().size() == QSize(220, 110); }));
    EXPECT_EQ(drawn(corner), QRectF(0, 0, 220, 110));
    EXPECT_EQ(panel.frame(), moved);
}
}  // namespace
