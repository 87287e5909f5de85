#include "desktop/DesktopTest.h"

namespace {

class Hover : public DesktopTest {
 protected:
    /// Moves there and gives the program the time to notice, which it may not use to change its mind.
    void restAt(QPoint place) {
        session.moveTo(place);
        letPass(0.15);
    }
};

// The shape at rest is 185 x 58, open 214 x 108. Entering needs 14 points at most, leaving more than 24.
TEST_F(Hover, OpensAtTheInnerMarginAndClosesAtTheOuterOne) {
    Glimmet glimmet(session, home, {QStringLiteral("--trace")});
    ASSERT_TRUE(glimmet.started());
    ASSERT_TRUE(waitForBody(185, 58));

    struct Way {
        QPoint stillOut, in, stillIn, out;
        const char *entering, *leaving;
    };
    const Way ways[] = {
        {{756, 73}, {756, 72}, {756, 132}, {756, 133}, "(756.0, 910.0)", "(756.0, 849.0)"},
        {{863, 20}, {862, 20}, {887, 20}, {888, 20}, "(862.0, 962.0)", "(888.0, 962.0)"},
        {{649, 0}, {650, 0}, {625, 0}, {624, 0}, "(650.0, 982.0)", "(624.0, 982.0)"},
    };
    QStringList expected;
    for (const Way& way : ways) {
        restAt(way.stillOut);
        EXPECT_EQ(glimmet.errors("trace:"), expected);
        session.moveTo(way.in);
        EXPECT_TRUE(waitForBody(214, 108));
        expected.append(
            QStringLiteral("trace: hovering false → true at %1 zone=(106.5, 72.0)").arg(QLatin1String(way.entering)));
        restAt(way.stillIn);
        EXPECT_EQ(glimmet.errors("trace:"), expected);
        session.moveTo(way.out);
        EXPECT_TRUE(waitForBody(185, 58));
        expected.append(
            QStringLiteral("trace: hovering true → false at %1 zone=(121.0, 122.0)").arg(QLatin1String(way.leaving)));
        EXPECT_EQ(glimmet.errors("trace:"), expected);
    }
    EXPECT_NEAR(bodyIn(picture())->center(), 756, 1);
}

TEST_F(Hover, NoticesAPointerThatAProgramPutsThereAndTellsNothingUnlessAsked) {
    Glimmet glimmet(session, home);
    ASSERT_TRUE(glimmet.started());
    // A program can put the pointer there without any input.
    xcb_warp_pointer(session.xcb(), XCB_NONE, session.root(), 0, 0, 0, 0, kOnNotch.x(), kOnNotch.y());
    session.sync();
    ASSERT_TRUE(waitForBody(214, 108));
    EXPECT_EQ(glimmet.errors("trace:"), QStringList());
}

TEST_F(Hover, EyesFollowThePointer) {
    Glimmet glimmet(session, home);
    ASSERT_TRUE(glimmet.started());
    const auto look = [&](QPointF gaze) {
        return waitForFace([=](const Face& face) {
            return (face.left.gaze - gaze).manhattanLength() < 1.5 && (face.right.gaze - gaze).manhattanLength() < 1.5;
        });
    };
    // Within 0.05 s of a look it takes no other one, so the pointer has to travel.
    const auto travel = [&](QPoint from, QPoint to) { session.glide(from, to, 10, 20); };
    // From afar the pupils go all their way: 3 points at rest.
    travel(kFar, {200, 60});
    EXPECT_TRUE(look({-3, 0})) << "left";
    travel({200, 200}, {1300, 200});
    travel({1300, 200}, {1300, 60});
    EXPECT_TRUE(look({3, 0})) << "right";
    travel({1300, 60}, {756, 700});
    EXPECT_TRUE(look({0, 3})) << "below";
}

}  // namespace
