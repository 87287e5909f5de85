#include <QElapsedTimer>

#include "X11Test.h"
#include "platform/FileUrls.h"
#include "platform/linux/x11/X11DragPasteboard.h"
#include "support/DragTools.h"
#include "support/TestFolder.h"

namespace {
using Step = std::function<bool()>;

class X11DragOut : public X11Test {
 protected:
    X11DragOut() {
        folder.write(name, "contents");
        icon.fill(Qt::green);
    }

    /// Does one thing after another, each until it is true, from a timer: a drag runs a loop of its own, in which no
    /// test waits. Lets go of the button at the end, or after ten seconds.
    testing::AssertionResult hand(std::vector<Step> steps) {
        size_t next = 0;
        QElapsedTimer time;
        time.start();
        const TimerHandle timer = loop.every(0.01, [&] {
            if (next < steps.size() && steps[next]()) ++next;
            if (next == steps.size() || time.elapsed() > 10000) session().release(1);
        });
        return waitFor([&] { return next == steps.size(); }, 11) << ", stuck at step " << next;
    }
    Step moves(QPoint from, QPoint to) {
        return [=, this, step = 0]() mutable {
            session().moveTo(from + (to - from) * ++step / 20);
            return step == 20;
        };
    }
    /// A drag from the panel to `end`, where `there` becomes true.
    testing::AssertionResult drag(QPoint end, const Step& there) {
        const int before = outsider.changeCount();
        const auto pressed = panel.presses.size();
        session().moveTo(start);
        session().press(1);
        const QPoint away = start + QPoint(20, 10);
        return hand({[=, this] { return panel.presses.size() > pressed; },
                     [this] {
                         panel.dragOut(file, icon, {5, 5});
                         return true;
                     },
                     moves(start, away), [=, this] { return outsider.changeCount() > before; }, moves(away, end),
                     there});
    }

    const QPoint start = pixel({250, 60});
    const QByteArray name = "a b \xff%.txt";
    TestFolder folder;
    const QUrl file = fileUrl(folder.path(name));
    QImage icon{20, 20, QImage::Format_ARGB32_Premultiplied};
    TestPanel panel{connection, sampler, loop};
    X11DragPasteboard pasteboard{connection, loop, &X11PanelWindow::isOwnWindow};
    /// As another program would see it.
    X11DragPasteboard outsider{connection, loop, [](xcb_window_t) { return false; }};
};

TEST_F(X11DragOut, GivesACopyToOthersAndNothingToThePanelOrTheDesktop) {
    DragTool receiver(session(), DragTool::Kind::gtkTarget, {900, 500});
    std::optional<bool> own, others;
    bool asked = false;
    const auto iconAt = [&](QPoint place, QPointF inIcon) { return colourAt(place + (inIcon * ratio()).toPoint()); };
    const auto received = [&] {
        if (!std::exchange(asked, true)) {
            pasteboard.canReadUsable([&](bool usable) { own = usable; });
            outsider.canReadUsable([&](bool usable) { others = usable; });
        }
        // The icon lies with its grip under the pointer.
        return own && others && iconAt(receiver.middle(), {10, 10}) == QColor(Qt::green) &&
               iconAt(receiver.middle(), {17, 0}) != QColor(Qt::green);
    };
    const auto nothing = [] { return true; };
    const std::pair<QPoint, Step> ends[] = {
        {receiver.middle(), received}, {pixel({400, 30}), nothing}, {QPoint(900, 700), nothing}};
    int clicks = 0;
    for (const auto& [end, there] : ends) {
        ASSERT_TRUE(drag(end, there));
        EXPECT_EQ(panel.releases, clicks);
        session().click(start);
        ++clicks;
        ASSERT_TRUE(waitFor([&] { return panel.presses.size() == 2 * clicks && panel.releases == clicks; }))
            << "the next press is lost";
    }
    EXPECT_TRUE(panel.drags.empty()) << "the drag was reported as the panel's own, too";
    EXPECT_EQ(own, false) << "our own drag carries nothing for us";
    EXPECT_EQ(others, true);
    EXPECT_TRUE(waitFor([&] { return receiver.lines().count(QStringLiteral("bytes contents")) == 1; }));
    EXPECT_TRUE(receiver.said(QStringLiteral("uri ") + QString::fromLatin1(file.toEncoded())));
    EXPECT_TRUE(panel.targeted.empty());
    EXPECT_EQ(panel.drop, nullptr);
}
}  // namespace
