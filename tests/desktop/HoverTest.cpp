#include <QElapsedTimer>

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

TEST_F(Hover, TellsNothingUnlessAsked) {
    Glimmet glimmet(session, home);
    ASSERT_TRUE(glimmet.started());
    session.moveTo(kOnNotch);
    ASSERT_TRUE(waitForBody(214, 108));
    EXPECT_EQ(glimmet.errors("trace:"), QStringList());
}

TEST_F(Hover, EyesFollowThePointerAndGrow) {
    Glimmet glimmet(session, home);
    ASSERT_TRUE(glimmet.started());
    const auto look = [&](double x, double y, double diameter) {
        return waitForFace([=](const Face& face) {
            for (const SeenEye& eye : {face.left, face.right}) {
                if (std::abs(eye.white.width() - diameter) > 1.5) return false;
                if (std::abs(eye.gaze.x() - x) > 1 || std::abs(eye.gaze.y() - y) > 1) return false;
            }
            return true;
        });
    };
    // Within 0.05 s of a look it takes no other one, so the pointer has to travel.
    const auto travel = [&](QPoint from, QPoint to) { session.glide(from, to, 10, 20); };
    // From afar the pupils go all their way: 3 points at rest.
    travel(kFar, {200, 60});
    EXPECT_TRUE(look(-3, 0, 17)) << "left";
    travel({200, 200}, {1300, 200});
    travel({1300, 200}, {1300, 60});
    EXPECT_TRUE(look(3, 0, 17)) << "right";
    travel({1300, 60}, {756, 700});
    EXPECT_TRUE(look(0, 3, 17)) << "below";

    // Open it is 6.5 points, 160 points away; in the zone the pointer is nearer.
    travel({756, 700}, {756, 60});
    EXPECT_TRUE(waitForBody(214, 108));
    travel({756, 60}, {640, 60});
    EXPECT_TRUE(waitForFace([](const Face& face) {
        return std::abs(face.left.white.width() - 30) < 1.5 && face.left.gaze.x() < -2.5 &&
               face.right.gaze.x() < face.left.gaze.x() - 1;
    })) << "the eye that is farther away turns farther";
    travel({640, 60}, {756, 130});
    EXPECT_TRUE(waitForFace([](const Face& face) {
        return face.left.gaze.y() > 2 && face.left.gaze.x() > 0.5 && face.right.gaze.x() < -0.5;
    })) << "it squints at what is right below";
}

TEST_F(Hover, AFlickNearItStartlesItForAMoment) {
    Glimmet glimmet(session, home);
    ASSERT_TRUE(glimmet.started());
    const auto startled = [](const Face& face) { return face.left.white.width() > 18.5; };
    const QPoint right(1400, 100), left(200, 100);

    // 1000 points a second are no flick.
    session.moveTo(right);
    ASSERT_TRUE(waitForFace([&](const Face& face) { return face.left.open() && face.left.gaze.x() > 2; }));
    bool fright = false;
    QPoint place = right;
    while (place.x() > left.x()) {
        const QPoint next = place - QPoint(30, 0);
        session.glide(place, next, 3, 10);
        place = next;
        const auto face = faceIn(picture());
        fright |= face && startled(*face);
    }
    EXPECT_FALSE(fright);

    session.glide(place, right, 30, 5);
    ASSERT_TRUE(waitForFace(startled, 1));
    QElapsedTimer since;
    since.start();
    EXPECT_TRUE(waitForFace([&](const Face& face) { return !startled(face) && since.elapsed() > 250; }, 2));
    EXPECT_LT(since.elapsed(), 1000);
}

TEST_F(Hover, DozesOffWhenNothingHappensAndWakesUpAtAMove) {
    Glimmet glimmet(session, home);
    ASSERT_TRUE(glimmet.started());
    session.moveTo({210, 700});
    QElapsedTimer idle;
    idle.start();
    ASSERT_TRUE(waitForEyes());

    // Lids come down over the white; the arcs are where its top was.
    const auto arcs = [](const Face& face) {
        return !face.left.open() && !face.right.open() && face.left.white.bottom() < 45 &&
               face.right.white.bottom() < 45;
    };
    ASSERT_TRUE(waitForFace(arcs, 30));
    EXPECT_GT(idle.elapsed(), 21900);
    EXPECT_LT(idle.elapsed(), 27500) << "looked for every four seconds";
    EXPECT_TRUE(waitForBody(185, 58));
    letPass(0.5);
    ASSERT_TRUE(faceIn(picture())) << "and stays asleep";
    EXPECT_TRUE(arcs(*faceIn(picture())));

    session.moveTo({1300, 700});
    EXPECT_TRUE(waitForFace([](const Face& face) { return face.left.open() && face.left.gaze.x() > 1; }, 1));
}

}  // namespace
