#include <QTemporaryDir>
#include <QThread>
#include <cstdio>
#include <deque>
#include <fstream>

#include "X11DropPanel.h"
#include "platform/FileUrls.h"
#include "platform/linux/x11/X11DragPasteboard.h"
#include "support/DragTools.h"

namespace {
/// Does one thing after another from a timer of the main loop: a drag runs a loop of its own, in which no test waits.
class Hand {
 public:
    Hand(XSession& session, MainLoop& loop) : session_(session) {
        timer_ = loop.every(0.01, [this] { work(); });
    }

    void until(const char* what, std::function<bool()> condition) {
        if (steps_.empty()) sinceStep_.restart();
        steps_.emplace_back(what, std::move(condition));
    }
    void does(const std::function<void()>& act) {
        until("act", [act] {
            act();
            return true;
        });
    }
    void moves(QPoint from, QPoint to) {
        for (int step = 1; step <= 20; ++step) does([=, this] { session_.moveTo(from + (to - from) * step / 20); });
    }
    /// Waits until all is done. A step that takes five seconds ends it, and with it the drag.
    testing::AssertionResult finished() {
        const auto result = waitFor([this] { return steps_.empty(); }, 30);
        if (stuck_) return testing::AssertionFailure() << "stuck at: " << std::exchange(stuck_, nullptr);
        return result;
    }

 private:
    void work() {
        if (steps_.empty()) return;
        if (steps_.front().second()) {
            steps_.pop_front();
            sinceStep_.restart();
        } else if (sinceStep_.elapsed() > 5000) {
            stuck_ = steps_.front().first;
            steps_.clear();
            session_.release(1);
        }
    }

    XSession& session_;
    std::deque<std::pair<const char*, std::function<bool()>>> steps_;
    QElapsedTimer sinceStep_;
    const char* stuck_ = nullptr;
    TimerHandle timer_;
};

class X11DragOut : public X11Test {
 protected:
    X11DragOut() {
        std::ofstream(path.constData()) << "contents";
        icon.fill(Qt::green);
        panel.heard.onRelease = [this](PanelWindow::Button) { ++releases; };
        panel.heard.onPress = [this](PanelWindow::Button, QPointF, QPointF) { ++presses; };
        panel.heard.onDrag = [this](QPointF) {
            ++drags;
            if (!dragOnMove) return;
            dragOnMove = false;
            panel.dragOut(fileUrl(path), icon, {5, 5});
        };
    }
    ~X11DragOut() override { std::remove(path.constData()); }

    /// Presses in the panel and moves until the drag has begun.
    void beginDrag() {
        const int before = outsider.changeCount(), pressesBefore = presses;
        dragOnMove = true;
        session().moveTo(start);
        session().press(1);
        hand.until("press", [=, this] { return presses > pressesBefore; });
        hand.moves(start, start + QPoint(20, 10));
        hand.until("begin", [=, this] { return outsider.changeCount() > before; });
    }
    void endDrag() {
        hand.does([this] { session().release(1); });
        hand.until("end", [] { return QThread::currentThread()->loopLevel() == 0; });
    }
    static QPoint inIcon(QPointF place) { return (place * ratio()).toPoint(); }

    const QPoint start = pixel({250, 60});
    Hand hand{session(), loop};
    QTemporaryDir folder;
    const QByteArray path = folder.path().toUtf8() + "/a b \xff%.txt";
    QImage icon{20, 20, QImage::Format_ARGB32_Premultiplied};
    DropPanel panel{connection, sampler, loop};
    X11DragPasteboard pasteboard{connection, loop, &X11PanelWindow::ownWindow};
    /// As another program would see it.
    X11DragPasteboard outsider{connection, loop, [](xcb_window_t) { return false; }};
    int presses = 0, releases = 0, drags = 0;
    bool dragOnMove = false;
};

TEST_F(X11DragOut, GivesACopyOfTheFileToAnotherProgram) {
    DragTool receiver(session(), DragTool::Kind::gtkTarget, {900, 500});
    const QString uri = QStringLiteral("uri ") + QString::fromLatin1(fileUrl(path).toEncoded());
    for (int round = 1; round <= 2; ++round) {
        std::optional<bool> own, others;
        beginDrag();
        hand.moves(start + QPoint(20, 10), receiver.middle());
        // The icon lies with its grip under the pointer.
        hand.until("icon", [&] {
            return colourAt(receiver.middle() + inIcon({10, 10})) == QColor(Qt::green) &&
                   colourAt(receiver.middle() + inIcon({17, 0})) != QColor(Qt::green);
        });
        hand.does([&] {
            pasteboard.canReadUsable([&](bool usable) { own = usable; });
            outsider.canReadUsable([&](bool usable) { others = usable; });
        });
        hand.until("answers", [&] { return own && others; });
        endDrag();
        ASSERT_TRUE(hand.finished());
        EXPECT_EQ(own, false) << "our own drag carries nothing for us";
        EXPECT_EQ(others, true);
        EXPECT_TRUE(waitFor([&] { return receiver.lines().count(uri) == round; }));
        EXPECT_TRUE(waitFor([&] { return receiver.lines().count(QStringLiteral("bytes contents")) == round; }));
        EXPECT_EQ(presses, round) << "after a drag the next press is lost";
        EXPECT_EQ(drags, round) << "the drag was reported as the panel's own, too";
    }
    EXPECT_EQ(releases, 0);
    EXPECT_TRUE(panel.targeted.empty());

    session().click(start);
    EXPECT_TRUE(waitFor([&] { return presses == 3 && releases == 1; }));
}

TEST_F(X11DragOut, ComesToNothingOnThePanelItselfAndOnTheBareDesktop) {
    int clicks = 0;
    for (const QPoint end : {pixel({400, 30}), QPoint(900, 700)}) {
        beginDrag();
        hand.moves(start + QPoint(20, 10), end);
        endDrag();
        ASSERT_TRUE(hand.finished());
        session().click(start);
        ++clicks;
        ASSERT_TRUE(waitFor([&] { return presses == 2 * clicks && releases == clicks; }));
    }
    EXPECT_TRUE(panel.targeted.empty());
    EXPECT_EQ(panel.drop, nullptr);
}
}  // namespace
