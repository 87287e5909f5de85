#include "RawDragSource.h"

namespace {
using Answer = RawDragSource::Answer;
using Kind = Answer::Kind;
const QString uriType = QStringLiteral("text/uri-list");

/// Sources that speak XDND badly, or mean ill.
class X11DropProtocol : public X11Test {
 protected:
    xcb_window_t target() { return xcb_window_t(panel.window().winId()); }
    testing::AssertionResult workUntil(const std::function<bool()>& condition, double seconds = 5) {
        return waitFor(
            [&] {
                source.work();
                return condition();
            },
            seconds);
    }
    /// Enters, moves and drops, up to the panel's taking it.
    void drop(const QList<const char*>& types) {
        source.enter(target(), types);
        source.position(target());
        source.send(target(), "XdndDrop", {0, XCB_CURRENT_TIME, 0, 0});
        ASSERT_TRUE(workUntil([&] { return panel.drop != nullptr; }));
    }
    std::optional<QByteArray> loads(const QString& type, double seconds = 7) {
        std::optional<QByteArray> result;
        bool answered = false;
        panel.drop->load(type, [&](auto bytes) {
            result = std::move(bytes);
            answered = true;
        });
        EXPECT_TRUE(workUntil([&] { return answered; }, seconds));
        return result;
    }
    uint32_t copy() { return session().atom("XdndActionCopy"); }

    DropPanel panel{connection, sampler, loop};
    RawDragSource source{session()};
};

TEST_F(X11DropProtocol, AnswersEveryPositionAndTakesCopiesOnly) {
    source.position(target());  // nobody has entered
    ASSERT_TRUE(workUntil([&] { return source.statuses.size() == 1; }));
    EXPECT_EQ(source.statuses.last(), (QList<uint32_t>{target(), 0, 0, 0, 0}));
    EXPECT_TRUE(panel.targeted.empty());

    source.enter(target(), {"application/x-color", "image/png"});
    for (int i = 2; i <= 4; ++i) {
        source.position(target());
        ASSERT_TRUE(workUntil([&] { return source.statuses.size() == i; }));
        EXPECT_EQ(source.statuses.last(), (QList<uint32_t>{target(), 1, 0, 0, copy()}));
    }
    EXPECT_EQ(panel.targeted, QList{true}) << "told of changes only";
    source.send(target(), "XdndDrop", {0, XCB_CURRENT_TIME, 0, 0});
    ASSERT_TRUE(workUntil([&] { return panel.drop != nullptr; }));
    panel.drop.reset();
    ASSERT_TRUE(workUntil([&] { return !source.finishes.empty(); }));
    EXPECT_EQ(source.finishes.last(), (QList<uint32_t>{target(), 0, 0, 0, 0})) << "nothing was taken";

    // The same drop again is one that nothing led up to.
    source.send(target(), "XdndDrop", {0, XCB_CURRENT_TIME, 0, 0});
    ASSERT_TRUE(workUntil([&] { return source.finishes.size() == 2; }));
    EXPECT_EQ(source.finishes.last(), (QList<uint32_t>{target(), 0, 0, 0, 0}));
    EXPECT_EQ(panel.drop, nullptr);
}

TEST_F(X11DropProtocol, IsNotLeftTargetedByASourceThatGoesSilent) {
    source.enter(target(), {"TEXT"});
    source.position(target());
    ASSERT_TRUE(workUntil([&] { return panel.targeted == QList{true}; }));
    {
        RawDragSource second(session());
        second.enter(target(), {"TEXT"});
        ASSERT_TRUE(waitFor([&] { return panel.targeted == (QList{true, false}); })) << "by the next one that enters";
        second.position(target());
        ASSERT_TRUE(waitFor([&] { return panel.targeted.size() == 3; }));
        source.send(target(), "XdndLeave", {});  // the first one's word counts no longer
        source.position(target());
        ASSERT_TRUE(workUntil([&] { return source.statuses.size() == 2; }));
        EXPECT_EQ(source.statuses.last()[1], 0u);
        EXPECT_EQ(panel.targeted.size(), 3);
        second.destroyWindow();
        ASSERT_TRUE(waitFor([&] { return panel.targeted.size() == 4; })) << "by its window's end";
    }
    source.enter(target(), {"TEXT"});
    source.position(target());
    ASSERT_TRUE(workUntil([&] { return panel.targeted.size() == 5; }));
    session().press(1);
    session().release(1);
    ASSERT_TRUE(workUntil([&] { return panel.targeted.size() == 6; })) << "by the button's release";
    EXPECT_EQ(panel.targeted, (QList{true, false, true, false, true, false}));

    // A window that does not exist any more cannot enter.
    source.destroyWindow();
    source.enter(target(), {"TEXT"});
    source.position(target());
    letPass(0.1);
    EXPECT_EQ(panel.targeted.size(), 6);
}

TEST_F(X11DropProtocol, SurvivesAnyAnswer) {
    const struct {
        const char* what;
        Answer answer;
        std::optional<QByteArray> bytes;
    } cases[] = {
        {"refusal", {Kind::refusal, {}}, {}},
        {"whole", {Kind::data, "file:///a"}, "file:///a"},
        {"another type", {Kind::data, "file:///a", "STRING"}, "file:///a"},
        {"other units", {Kind::data, "file:///a...", "ATOM", 32}, {}},
        {"nothing in it", {Kind::data, ""}, {}},
        {"property not there", {Kind::noProperty, {}}, {}},
        {"answers never asked for", {Kind::strangers, "file:///a"}, "file:///a"},
        {"pieces", {Kind::pieces, "ab,cd,e,"}, "abcde"},
        {"no pieces", {Kind::pieces, ""}, {}},
        {"endless pieces", {Kind::endless, {}}, {}},
    };
    drop({"text/uri-list"});
    for (const auto& [what, answer, bytes] : cases) {
        source.answers["text/uri-list"] = answer;
        EXPECT_EQ(loads(uriType, 20), bytes) << what;
    }
}

TEST_F(X11DropProtocol, GivesUpOnPiecesThatCeaseToCome) {
    drop({"text/uri-list", "UTF8_STRING"});
    source.answers["text/uri-list"] = {Kind::pieces, "ab,cd"};
    source.answers["UTF8_STRING"] = {Kind::data, "text"};
    bool first = false, second = false;
    QElapsedTimer timer;
    timer.start();
    panel.drop->load(uriType, [&](const auto& bytes) { first = !bytes; });
    panel.drop->load(QStringLiteral("text/plain;charset=utf-8"), [&](const auto& bytes) { second = bytes == "text"; });
    ASSERT_TRUE(workUntil([&] { return second; }, 1)) << "one form keeps another waiting";
    ASSERT_TRUE(workUntil([&] { return first; }, 8));
    EXPECT_NEAR(timer.elapsed() / 1000.0, 5, 0.7);
}

TEST_F(X11DropProtocol, FindsTheTextThatASourceDoesGive) {
    drop({"UTF8_STRING", "text/plain", "STRING", "TEXT"});
    source.answers["text/plain"] = {Kind::data, QByteArray(1, '\0')};
    source.answers["STRING"] = {Kind::data, "caf\xe9", "COMPOUND_TEXT"};
    source.answers["TEXT"] = {Kind::data, QByteArray("caf\xe9\0", 5), "STRING"};
    EXPECT_EQ(loads(QStringLiteral("text/plain;charset=utf-8")), "caf\xc3\xa9");
    EXPECT_EQ(source.requested, (QList<QByteArray>{"UTF8_STRING", "text/plain", "STRING", "TEXT"}));
}

TEST_F(X11DropProtocol, AnswersNothingOnceTheDropIsGone) {
    drop({"text/uri-list"});
    source.answers["text/uri-list"] = {Kind::nothing, {}};
    bool answered = false;
    panel.drop->load(uriType, [&](const auto&) { answered = true; });
    ASSERT_TRUE(workUntil([&] { return !source.requested.empty(); }));
    panel.drop.reset();
    ASSERT_TRUE(workUntil([&] { return !source.finishes.empty(); }));
    letPass(0.1);
    EXPECT_FALSE(answered);

    // A receiver may let go of the drop in the very answer.
    drop({"text/uri-list"});
    source.answers["text/uri-list"] = {Kind::data, "file:///a"};
    panel.drop->load(uriType, [&](const auto&) { panel.drop.reset(); });
    EXPECT_TRUE(workUntil([&] { return source.finishes.size() == 2; }));
    EXPECT_EQ(source.finishes.last(), (QList<uint32_t>{target(), 1, copy(), 0, 0}));
}
}  // namespace
