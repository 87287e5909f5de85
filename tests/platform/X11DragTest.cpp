#include "RawDragSource.h"
#include "platform/linux/x11/X11DragPasteboard.h"

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
    X11DragPasteboard pasteboard{connection, loop, &X11PanelWindow::isOwnWindow};
};

TEST_F(X11DragWatch, AsksSourcesThatDoNotListTheirTargetsAndNotForLong) {
    EXPECT_EQ(usable(), false) << "nothing is being dragged";
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
        {"lists nothing, as Qt for fewer than four types", {}, {}, true},
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
    source.own(source.window);
    EXPECT_EQ(usable(), true);
    EXPECT_EQ(overtaken, 0);
    EXPECT_TRUE(waitFor([&] { return pasteboard.changeCount() == 2; })) << "the same window begins another drag";
    session().click({5, 700});
    EXPECT_TRUE(waitFor([&] { return pasteboard.changeCount() == 3; }));
    EXPECT_EQ(usable(), false) << "the drag was over at the next press";
    source.own(panel.id());
    EXPECT_TRUE(waitFor([&] { return pasteboard.changeCount() == 4; }));
    EXPECT_EQ(usable(), false) << "our own drag carries nothing for us";
}
}  // namespace
