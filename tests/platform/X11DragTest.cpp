#include <QElapsedTimer>

#include "RawDragSource.h"
#include "platform/FileUrls.h"
#include "platform/linux/x11/X11DragPasteboard.h"
#include "support/DragTools.h"
#include "support/TestFolder.h"

namespace {
using Answer = RawDragSource::Answer;
using Kind = Answer::Kind;

class X11DragWatch : public X11Test {
 protected:
    /// Absent where no answer comes.
    std::optional<bool> usable() {
        std::optional<bool> result;
        pasteboard.canReadUsable([&](bool answer) { result = answer; });
        EXPECT_TRUE(waitFor([&] { return result.has_value(); }));
        return result;
    }

    TestPanel panel{connection, sampler, loop};
    X11DragPasteboard pasteboard{connection, loop, &X11PanelWindow::ownWindow};
};

TEST_F(X11DragWatch, KnowsWhatQtDragsAndThePanelTakesACopyOfIt) {
    EXPECT_EQ(usable(), false) << "nothing is being dragged";
    const std::pair<QList<QByteArray>, bool> cases[] = {{{"a/a=1", "b/b=2", "c/c=3", "d/d=4"}, false},
                                                        {{"text/uri-list=file:///a%20b"}, true}};
    for (const auto& [offered, expected] : cases) {
        DragTool source(session(), DragTool::Kind::qtSource, {100, 500}, offered);
        const int before = pasteboard.changeCount();
        ASSERT_TRUE(source.drag(session(), pixel({320, 60})));
        EXPECT_TRUE(waitFor([&] { return pasteboard.changeCount() == before + 1; }));
        EXPECT_EQ(usable(), expected) << offered.first().constData();
        EXPECT_TRUE(waitFor([&] { return panel.targeted.empty() != expected; }));
        session().release(1);
        if (expected) {
            ASSERT_TRUE(waitFor([&] { return panel.drop != nullptr; }));
            std::optional<QByteArray> bytes;
            panel.drop->load(QStringLiteral("text/uri-list"), [&](const auto& answer) { bytes = answer; });
            EXPECT_TRUE(waitFor([&] { return bytes == "file:///a%20b\r\n"; }));
            panel.drop.reset();
            EXPECT_TRUE(waitFor([&] { return source.said(QStringLiteral("drag-end copy")); }));
        }
        session().click(source.middle());
        EXPECT_TRUE(waitFor([&] { return pasteboard.changeCount() > before + 1; }));
        EXPECT_EQ(usable(), false) << "the drag was over at the next press";
    }
}

TEST_F(X11DragWatch, AsksSourcesThatDoNotListTheirTargetsAndNotForLong) {
    RawDragSource source(session());
    ASSERT_TRUE(waitFor([&] { return pasteboard.changeCount() == 1; }));
    const auto listed = [&](const QList<const char*>& names) {
        return Answer{Kind::data, source.atoms(names), "ATOM", 32};
    };
    const struct {
        const char* what;
        Answer targets;
        QList<const char*> typeList;
        bool usable;
    } cases[] = {
        {"lists nothing", {}, {}, true},
        {"a list of types", {}, {"a/a", "text/x-moz-url"}, true},
        {"a useless list of types", {}, {"a/a", "image/png"}, false},
        {"no targets", listed({}), {"STRING"}, true},
        {"targets that are bytes", {Kind::data, "text"}, {"STRING"}, true},
        {"useless targets", listed({"TARGETS", "image/png", "application/octet-stream"}), {"STRING"}, false},
        {"a link", listed({"TARGETS", "image/png", "_NETSCAPE_URL"}), {}, true},
        {"a text", listed({"TARGETS", "text/plain"}), {}, true},
        {"a promise", listed({"TARGETS", "XdndDirectSave0"}), {}, true},
        {"silence", {Kind::nothing, {}}, {}, true},
        {"silence and a useless list", {Kind::nothing, {}}, {"image/png"}, false},
    };
    for (const auto& [what, targets, typeList, expected] : cases) {
        source.answers["TARGETS"] = targets;
        source.setTypeList(typeList);
        EXPECT_EQ(usable(), expected) << what;
    }

    int overtaken = 0;
    pasteboard.canReadUsable([&](bool) { ++overtaken; });
    source.setTypeList({"TEXT"});
    source.own();
    EXPECT_EQ(usable(), true);
    EXPECT_EQ(overtaken, 0);
    EXPECT_TRUE(waitFor([&] { return pasteboard.changeCount() == 2; })) << "the same window begins another drag";
}

class X11DragOut : public X11DragWatch {
 protected:
    X11DragOut() {
        folder.write(name, "contents");
        icon.fill(Qt::green);
    }

    /// Drags the file from the panel and lets go at `end`. A drag runs a loop of its own, in which no test waits, so a
    /// timer takes the steps, each until it is true.
    testing::AssertionResult drag(QPoint end) {
        own = others = {};
        const std::function<bool()> steps[] = {
            [this, before = panel.presses.size()] { return panel.presses.size() > before; },
            [this] {
                panel.dragOut(file, icon, {5, 5});
                session().moveTo(start + QPoint(20, 10));
                return true;
            },
            [this, before = outsider.changeCount()] { return outsider.changeCount() > before; },
            [=, this] {
                session().moveTo(end);
                pasteboard.canReadUsable([this](bool usable) { own = usable; });
                outsider.canReadUsable([this](bool usable) { others = usable; });
                return true;
            },
            [=, this] {
                const auto green = [=](QPointF away) {
                    return colourAt(end + (away * ratio()).toPoint()) == QColor(Qt::green);
                };
                return own && others && green({10, 10}) && !green({17, 0});  // the grip is under the pointer
            }};
        size_t next = 0;
        QElapsedTimer time;
        time.start();
        session().moveTo(start);
        session().press(1);
        const TimerHandle timer = loop.every(0.01, [&] {
            if (next < std::size(steps) && steps[next]()) ++next;
            if (next == std::size(steps) || time.elapsed() > 10000) session().release(1);
        });
        return waitFor([&] { return next == std::size(steps); }, 11) << ", stuck at step " << next;
    }

    const QPoint start = pixel({250, 60});
    const QByteArray name = "a b \xff%.txt";
    TestFolder folder;
    const QUrl file = fileUrl(folder.path(name));
    QImage icon{20, 20, QImage::Format_ARGB32_Premultiplied};
    /// As another program would see it.
    X11DragPasteboard outsider{connection, loop, [](xcb_window_t) { return false; }};
    std::optional<bool> own, others;
};

TEST_F(X11DragOut, GivesACopyToOthersAndNothingToThePanelOrTheDesktop) {
    DragTool receiver(session(), DragTool::Kind::gtkTarget, {900, 500});
    int clicks = 0;
    for (const QPoint end : {receiver.middle(), pixel({400, 30}), QPoint(900, 700)}) {
        ASSERT_TRUE(drag(end));
        EXPECT_EQ(own, false) << "our own drag carries nothing for us";
        EXPECT_EQ(others, true);
        EXPECT_EQ(panel.releases, clicks);
        session().click(start);
        ++clicks;
        ASSERT_TRUE(waitFor([&] { return panel.presses.size() == 2 * clicks && panel.releases == clicks; }))
            << "the next press is lost";
    }
    EXPECT_TRUE(panel.drags.empty()) << "the drag was reported as the panel's own, too";
    EXPECT_TRUE(waitFor([&] { return receiver.lines().count(QStringLiteral("bytes contents")) == 1; }));
    EXPECT_TRUE(receiver.said(QStringLiteral("uri ") + QString::fromLatin1(file.toEncoded())));
    EXPECT_TRUE(panel.targeted.empty() && !panel.drop);
}
}  // namespace
