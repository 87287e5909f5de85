#include "RawDragSource.h"
#include "platform/linux/x11/SelectionReader.h"

namespace {
using Answer = RawDragSource::Answer;
using Kind = Answer::Kind;
const QString kUris = QStringLiteral("text/uri-list"), kText = QStringLiteral("text/plain;charset=utf-8");

/// Drags onto the panel. Most sources here speak XDND badly, or mean ill.
class X11Drop : public X11Test {
 protected:
    xcb_window_t target() { return panel.id(); }
    void hover(const QList<const char*>& types) {
        source.enter(target(), types);
        source.position(target());
    }
    void letGo() { source.send(target(), "XdndDrop", {0, kTime, 0, 0}); }
    /// Returns once the panel has taken it.
    void drop(const QList<const char*>& types) {
        hover(types);
        letGo();
        ASSERT_TRUE(waitFor([&] { return panel.drop != nullptr; }));
    }
    std::optional<QByteArray> loads(const QString& type) {
        std::optional<std::optional<QByteArray>> result;
        panel.drop->load(type, [&](const auto& bytes) { result = bytes; });
        EXPECT_TRUE(waitFor([&] { return result.has_value(); }, 20));
        return result.value_or(std::nullopt);
    }
    uint32_t copy() { return session().atom("XdndActionCopy"); }

    static constexpr uint32_t kTime = 4711;  // of every drop
    TestPanel panel{connection, sampler, loop};
    RawDragSource source{session()};
};

TEST_F(X11Drop, AnswersEveryPositionAndTakesCopiesOnly) {
    source.position(target());  // nobody has entered
    ASSERT_TRUE(waitFor([&] { return source.statuses.size() == 1; }));
    EXPECT_EQ(source.statuses.last(), (QList<uint32_t>{target(), 0, 0, 0, 0}));
    EXPECT_TRUE(panel.targeted.empty());

    source.enter(target(), {"application/x-color", "image/png"});
    for (int i = 2; i <= 4; ++i) {
        source.position(target());
        ASSERT_TRUE(waitFor([&] { return source.statuses.size() == i; }));
        EXPECT_EQ(source.statuses.last(), (QList<uint32_t>{target(), 1, 0, 0, copy()}));
    }
    EXPECT_EQ(panel.targeted, QList{true}) << "told of changes only";
    letGo();
    ASSERT_TRUE(waitFor([&] { return panel.drop != nullptr; }));
    panel.drop.reset();
    ASSERT_TRUE(waitFor([&] { return source.finishes.size() == 1; }));

    // One that nothing led up to, one that is of no use, and one that is not accepted.
    letGo();
    hover({"application/x-color", "application/octet-stream"});
    letGo();
    ASSERT_TRUE(waitFor([&] { return source.finishes.size() == 3; }));
    panel.accepts = false;
    hover({"text/uri-list"});
    letGo();
    ASSERT_TRUE(waitFor([&] { return source.finishes.size() == 4; }));
    for (const auto& finish : source.finishes)
        EXPECT_EQ(finish, (QList<uint32_t>{target(), 0, 0, 0, 0})) << "nothing was taken";
    EXPECT_EQ(source.statuses.last()[1], 0u);
    EXPECT_EQ(panel.targeted, (QList{true, false}));
    EXPECT_EQ(panel.drop, nullptr);
}

TEST_F(X11Drop, IsTargetedWhileADragIsOverItAndNotByOneThatGoesSilent) {
    const auto becomes = [&](bool targeted) {
        return waitFor([&] { return !panel.targeted.empty() && panel.targeted.last() == targeted; });
    };
    hover({"TEXT"});
    ASSERT_TRUE(becomes(true));
    for (const bool accepts : {false, true}) {
        panel.accepts = accepts;
        source.position(target());
        ASSERT_TRUE(becomes(accepts)) << "the panel's opinion changes";
    }
    source.send(target(), "XdndLeave", {});
    ASSERT_TRUE(becomes(false));
    hover({"TEXT"});
    ASSERT_TRUE(becomes(true));
    {
        RawDragSource second(session());
        second.enter(target(), {"TEXT"});
        ASSERT_TRUE(becomes(false)) << "by the next one that enters";
        second.position(target());
        ASSERT_TRUE(becomes(true));
        source.send(target(), "XdndLeave", {});  // the first one's word counts no longer
        source.position(target());
        ASSERT_TRUE(waitFor([&] { return source.statuses.last()[1] == 0; }));
        EXPECT_TRUE(panel.targeted.last());
        second.destroyWindow();
        ASSERT_TRUE(becomes(false)) << "by its window's end";
    }
    hover({"TEXT"});
    ASSERT_TRUE(becomes(true));
    session().click({5, 700});
    ASSERT_TRUE(becomes(false)) << "by the button's release";

    // A window that does not exist any more cannot enter.
    const auto before = panel.targeted.size();
    source.destroyWindow();
    hover({"TEXT"});
    letPass(0.1);
    EXPECT_EQ(panel.targeted.size(), before);
}

TEST_F(X11Drop, ReadsEveryFormAndSurvivesAnyAnswer) {
    const QByteArray huge = QByteArray(5 << 20, 'x') + "end", cafe = "caf\xc3\xa9";
    const QString mozilla = QStringLiteral("text/x-moz-url"), netscape = QStringLiteral("_NETSCAPE_URL"),
                  png = QStringLiteral("image/png");
    const QByteArray link = "file:///a";
    const struct {
        QList<const char*> offered;
        QStringList types;
        Answer answer;  // to the question for the first
        std::optional<QByteArray> bytes;
    } cases[] = {
        {{"text/uri-list", "application/x-color"}, {kUris}, {Kind::data, link}, link},
        {{"text/x-moz-url", "_NETSCAPE_URL", "UTF8_STRING"}, {mozilla, netscape, kText}, {Kind::data, link}, link},
        {{"image/png", "text/uri-list", "STRING", "TEXT"}, {png, kUris, kText}, {Kind::data, huge}, huge},
        {{"STRING"}, {kText}, {Kind::data, "caf\xe9"}, cafe},
        {{"text/plain"}, {kText}, {Kind::data, "caf\xe9"}, cafe},
        {{"text/plain"}, {kText}, {Kind::data, cafe}, cafe},
        {{"UTF8_STRING"}, {kText}, {Kind::data, "a\xff\xfe b"}, "a\xef\xbf\xbd\xef\xbf\xbd b"},
        {{"UTF8_STRING"}, {kText}, {Kind::data, huge}, huge.left(1 << 20)},
        {{"UTF8_STRING"}, {kText}, {Kind::endless, {}}, huge.left(1 << 20)},
        {{"text/uri-list"}, {kUris}, {Kind::refusal, {}}, {}},
        {{"text/uri-list"}, {kUris}, {Kind::data, link, "STRING"}, link},
        {{"text/uri-list"}, {kUris}, {Kind::data, "file:///a...", "ATOM", 32}, {}},
        {{"text/uri-list"}, {kUris}, {Kind::data, ""}, {}},
        {{"text/uri-list"}, {kUris}, {Kind::noProperty, {}}, {}},
        {{"text/uri-list"}, {kUris}, {Kind::pieces, "ab,cd,e,"}, "abcde"},
        {{"text/uri-list"}, {kUris}, {Kind::pieces, ""}, {}},
        {{"text/uri-list"}, {kUris}, {Kind::endless, {}}, {}},
    };
    for (const auto& row : cases) {
        SCOPED_TRACE(&row - cases);
        panel.drop.reset();
        source.answers = {{row.offered.first(), row.answer}};
        drop(row.offered);
        if (HasFatalFailure()) return;
        EXPECT_EQ(panel.drop->types(), row.types);
        EXPECT_TRUE(loads(row.types.first()) == row.bytes);
    }
}

TEST_F(X11Drop, WaitsAsLongAsPiecesKeepComing) {
    source.answers = {
        {"a/slow", {Kind::pieces, "a,b,c,"}}, {"a/half", {Kind::pieces, "a,b"}}, {"a/quick", {Kind::data, "q"}}};
    source.pause = 400;
    SelectionReader reader(connection, loop, "XdndSelection", XCB_CURRENT_TIME);
    QList<QByteArray> ends;
    const auto read = [&](const QByteArray& target) {
        reader.read(connection->atom(target), {.stallTimeout = 1},
                    [&, target](const auto& data) { ends.append(target + '=' + (data ? data->bytes : "nothing")); });
    };
    read("a/slow");
    EXPECT_TRUE(waitFor([&] { return ends == QList<QByteArray>{"a/slow=abc"}; }));
    read("a/half");
    read("a/quick");
    EXPECT_TRUE(waitFor([&] { return ends.size() == 3; }));
    EXPECT_EQ(ends.mid(1), (QList<QByteArray>{"a/quick=q", "a/half=nothing"})) << "one form keeps another waiting";
}

TEST_F(X11Drop, FindsTheTextThatASourceDoesGive) {
    drop({"UTF8_STRING", "text/plain", "STRING", "TEXT"});
    source.answers["text/plain"] = {Kind::data, QByteArray(1, '\0')};
    source.answers["STRING"] = {Kind::data, "caf\xe9", "COMPOUND_TEXT"};
    source.answers["TEXT"] = {Kind::data, QByteArray("caf\xe9\0", 5), "STRING"};
    EXPECT_EQ(loads(kText), "caf\xc3\xa9");
    EXPECT_EQ(source.requested, (QList<QByteArray>{"UTF8_STRING", "text/plain", "STRING", "TEXT"}));
    EXPECT_EQ(source.lastTime, kTime) << "Qt finds what was dropped by that";
}

TEST_F(X11Drop, AnswersNothingOnceTheDropIsGone) {
    drop({"text/uri-list"});
    source.answers["text/uri-list"] = {Kind::nothing, {}};
    panel.drop->load(kUris, [](const auto&) { ADD_FAILURE() << "an answer"; });
    ASSERT_TRUE(waitFor([&] { return !source.requested.empty(); }));
    panel.drop.reset();
    ASSERT_TRUE(waitFor([&] { return !source.finishes.empty(); }));
    letPass(0.1);

    // A receiver may let go of the drop in the very answer.
    drop({"text/uri-list"});
    source.answers["text/uri-list"] = {Kind::data, "file:///a"};
    panel.drop->load(kUris, [&](const auto&) { panel.drop.reset(); });
    EXPECT_TRUE(waitFor([&] { return source.finishes.size() == 2; }));
    EXPECT_EQ(source.finishes.last(), (QList<uint32_t>{target(), 1, copy(), 0, 0}));
}
}  // namespace
