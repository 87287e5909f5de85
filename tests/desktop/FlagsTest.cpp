#include "desktop/DesktopTest.h"

namespace {

/// The arguments in a line of them.
QStringList words(const char* line) {
    return QString::fromUtf8(line).split(u' ', Qt::SkipEmptyParts);
}

class Flags : public DesktopTest {
 protected:
    /// What the panel shows once it stands still; null if it never does.
    QImage settled(Glimmet& glimmet) {
        if (!glimmet.started()) return {};
        QImage last = panelPicture();
        const bool still = waitFor([&] {
            letPass(0.1);
            const QImage before = std::exchange(last, panelPicture());
            return faceIn(last) && differences(before, last) == 0;
        });
        return still ? last : QImage();
    }
};

TEST_F(Flags, GiveTheBodyItsSize) {
    const struct {
        const char* flags;
        double width, height;
    } cases[] = {
        {"--toy=x", 185, 58},
        {"--toy=c", 214, 108},
        {"--toy=Critter --idle", 185, 58},
        {"--toy=wea", 300, 94},
        {"--toy=w --idle", 185, 40},
        {"--toy=c --targeted", 300, 120},
        {"--toy=c --music", 300, 138},
        {"--toy=c --bites", 320, 152},
        {"--toy=c --seed --music", 320, 178},
        {"--toy=c --bigseed --expand", 320, 228},
        {"--toy=c --timer=60 --idle", 236, 74},
        {"--timer=soon", 185, 58},
        {"--toy=c --hidden --idle", 185, 37},
        {"--toy=c --yawn --idle", 185, 92},
        {"--toy=c --disk", 214 * 1.045, 108 * 0.985},
    };
    for (const auto& c : cases) {
        const Home fresh;
        Glimmet glimmet(session, fresh, words(c.flags));
        ASSERT_TRUE(glimmet.started()) << c.flags;
        EXPECT_TRUE(waitForBody(c.width, c.height)) << c.flags;
    }
}

TEST_F(Flags, PutTheCreatureAsideAndTurnItsEyes) {
    Glimmet glimmet(session, home, words("--toy=c --cursor=,-400,,57 --slide=20"));
    ASSERT_TRUE(glimmet.started());
    EXPECT_TRUE(waitFor([&] { return glimmet.panelFrame() == QRect(596, 0, 360, 230); }));
    EXPECT_TRUE(waitForFace(
        [](const Face& face) { return std::abs(face.left.gaze.x() + 6.5) < 1 && std::abs(face.left.gaze.y()) < 1; }));
}

TEST_F(Flags, ShowInTheFace) {
    QImage plain;
    const auto differsWith = [&](const char* flags) {
        const Home fresh;
        Glimmet glimmet(session, fresh, words("--toy=c") + words(flags));
        const QImage seen = settled(glimmet);
        EXPECT_FALSE(seen.isNull()) << flags;
        // The reactions come after 1.5 s, and a blink after 3.4.
        return !seen.isNull() && waitFor([&] { return differences(plain, panelPicture()) > 8; }, 2.5);
    };
    {
        const Home fresh;
        Glimmet glimmet(session, fresh, words("--toy=c"));
        plain = settled(glimmet);
        ASSERT_FALSE(plain.isNull());
    }
    ASSERT_FALSE(differsWith("")) << "a second start looks the same";
    for (const char* flags : {"--camera", "--charging", "--low", "--caps", "--chewing", "--downloading", "--worry",
                              "--needsyou", "--spawn", "--mic", "--offline", "--update", "--whispers"})
        EXPECT_TRUE(differsWith(flags)) << flags;
}

TEST_F(Flags, AllTogetherLeaveItRunning) {
    Glimmet glimmet(
        session, home,
        words("--hidden --idle --slide=nan --timer=1e400 --bites --music --chewtest= --disk --offline --caps "
              "--spawn --needsyou --mic --camera --worry --yawn --low --charging --drag --sky=Rain --cursor= "
              "--seed --expand --bigseed --targeted --toy=w --showx --unknown"));
    ASSERT_TRUE(glimmet.started());
    EXPECT_EQ(glimmet.errors().last(),
              QStringLiteral("glimmet: notch=(663.5, 950.0, 185.0, 32.0) top=982.0 toy=Weather"));
    EXPECT_TRUE(waitForBody(185, 37)) << "hidden is applied last";
    letPass(2);
    EXPECT_TRUE(glimmet.running()) << "after the reactions";
}

}  // namespace
