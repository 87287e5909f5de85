#include "RawDragSource.h"
#include "platform/linux/x11/X11DragPasteboard.h"
#include "support/DragTools.h"

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

    X11DragPasteboard pasteboard{connection, loop, &X11PanelWindow::isOwnWindow};
};

TEST_F(X11DragWatch, KnowsWhatQtDrags) {
    EXPECT_EQ(usable(), false) << "nothing is being dragged";
    const std::pair<QList<QByteArray>, bool> cases[] = {{{"text/uri-list=file:///a"}, true},
                                                        {{"a/a=1", "b/b=2", "c/c=3", "d/d=4"}, false}};
    for (const auto& [offered, expected] : cases) {
        DragTool source(session(), DragTool::Kind::qtSource, {100, 500}, offered);
        const int before = pasteboard.changeCount();
        ASSERT_TRUE(source.drag(session(), {600, 600}));
        EXPECT_TRUE(waitFor([&] { return pasteboard.changeCount() == before + 1; }));
        EXPECT_EQ(usable(), expected) << offered.first().constData();
        session().release(1);
        session().click(source.middle());
        EXPECT_TRUE(waitFor([&] { return pasteboard.changeCount() > before + 1; }));
        EXPECT_EQ(usable(), false) << "the drag was over at the next press";
    }
}

TEST_F(X11DragWatch, AsksSourcesThatDoNotListTheirTargets) {
    RawDragSource source(session());
    ASSERT_TRUE(waitFor([&] { return pasteboard.changeCount() == 1; }));
    const auto listed = [&](const QList<const char*>& names) {
        return Answer{Kind::data, source.atoms(names), "ATOM", 32};
    };
    const struct {
        const char* what;
        std::map<QByteArray, Answer> answers;
        QList<const char*> typeList;
        bool usable;
    } cases[] = {
        {"lists nothing", {}, {}, true},
        {"a list of types", {}, {"a/a", "text/x-moz-url"}, true},
        {"a useless list of types", {}, {"a/a", "image/png"}, false},
        {"no targets", {{"TARGETS", listed({})}}, {"STRING"}, true},
        {"targets that are bytes", {{"TARGETS", {Kind::data, "text"}}}, {"STRING"}, true},
        {"useless targets",
         {{"TARGETS", listed({"TARGETS", "image/png", "application/octet-stream"})}},
         {"STRING"},
         false},
        {"a link", {{"TARGETS", listed({"TARGETS", "image/png", "_NETSCAPE_URL"})}}, {}, true},
        {"a text", {{"TARGETS", listed({"TARGETS", "text/plain"})}}, {}, true},
        {"a promise", {{"TARGETS", listed({"TARGETS", "XdndDirectSave0"})}}, {}, true},
    };
    for (const auto& [what, answers, typeList, expected] : cases) {
        source.answers = answers;
        source.setTypeList(typeList);
        EXPECT_EQ(usable(), expected) << what;
    }
}

TEST_F(X11DragWatch, DoesNotWaitForASilentSourceForLong) {
    RawDragSource source(session());
    ASSERT_TRUE(waitFor([&] { return pasteboard.changeCount() == 1; }));
    source.answers["TARGETS"] = {Kind::nothing, {}};
    EXPECT_EQ(usable(), true);
    source.setTypeList({"image/png"});
    EXPECT_EQ(usable(), false);

    int overtaken = 0;
    pasteboard.canReadUsable([&](bool) { ++overtaken; });
    source.setTypeList({"TEXT"});
    source.own();
    EXPECT_EQ(usable(), true);
    EXPECT_EQ(overtaken, 0);
    EXPECT_TRUE(waitFor([&] { return pasteboard.changeCount() == 2; })) << "the same window begins another drag";
}
}  // namespace
