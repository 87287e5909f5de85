#include "desktop/DesktopTest.h"

namespace {

class Pointer : public DesktopTest {
 protected:
    /// Moves there and gives the program the time to notice, which it may not use to change its mind.
    void restAt(QPoint place) {
        session.moveTo(place);
        letPass(0.15);
    }
};

// The shape at rest is 185 x 58, open 214 x 108. Entering needs 14 points at most, leaving more than 24.
TEST_F(Pointer, OpensItAtTheInnerMarginAndClosesItAtTheOuterOne) {
    ASSERT_NO_FATAL_FAILURE(start({QStringLiteral("--trace")}));
    ASSERT_TRUE(waitForBody(185, 58));
    const struct {
        QPoint stillOut, in, stillIn, out;
        const char *entering, *leaving;
    } ways[] = {
        {{756, 73}, {756, 72}, {756, 132}, {756, 133}, "(756.0, 910.0)", "(756.0, 849.0)"},
        {{863, 20}, {862, 20}, {887, 20}, {888, 20}, "(862.0, 962.0)", "(888.0, 962.0)"},
        {{649, 0}, {650, 0}, {625, 0}, {624, 0}, "(650.0, 982.0)", "(624.0, 982.0)"},
    };
    QStringList expected;
    for (const auto& way : ways) {
        restAt(way.stillOut);
        EXPECT_EQ(glimmet->errors("trace:"), expected);
        session.moveTo(way.in);
        EXPECT_TRUE(waitForBody(214, 108));
        expected.append(
            QStringLiteral("trace: hovering false → true at %1 zone=(106.5, 72.0)").arg(QLatin1String(way.entering)));
        restAt(way.stillIn);
        EXPECT_EQ(glimmet->errors("trace:"), expected);
        session.moveTo(way.out);
        EXPECT_TRUE(waitForBody(185, 58));
        expected.append(
            QStringLiteral("trace: hovering true → false at %1 zone=(121.0, 122.0)").arg(QLatin1String(way.leaving)));
        EXPECT_EQ(glimmet->errors("trace:"), expected);
    }
}

TEST_F(Pointer, IsFollowedByTheEyesAndNoticedWhereAProgramPutsIt) {
    ASSERT_NO_FATAL_FAILURE(start());
    // Within 0.05 s of a look it takes no other one, so the pointer has to travel.
    session.glide(kFar, {1300, 60}, 20, 20);
    EXPECT_TRUE(waitForFace([](const Face& face) {
        const QPointF right(3, 0);  // from afar the pupils go all their way
        return (face.left.gaze - right).manhattanLength() < 1.5 && (face.right.gaze - right).manhattanLength() < 1.5;
    }));
    // A program can put the pointer there without any input.
    xcb_warp_pointer(session.xcb(), XCB_NONE, session.root(), 0, 0, 0, 0, kOnNotch.x(), kOnNotch.y());
    session.sync();
    EXPECT_TRUE(waitForBody(214, 108));
    EXPECT_EQ(glimmet->errors("trace:"), QStringList()) << "it tells nothing unless asked";
}

}  // namespace
