#include <QDir>
#include <QFile>

#include "desktop/DesktopTest.h"

namespace {

class StoredState : public DesktopTest {
 protected:
    /// Whether it runs and still notices the pointer.
    void expectAlive(Glimmet& glimmet, const char* what) {
        ASSERT_TRUE(glimmet.started()) << what;
        session.glide(kFar, kOnNotch, 5, 10);
        EXPECT_TRUE(waitFor([&] { return windowAt(kOnNotch) == glimmet.panel(); })) << what;
        session.moveTo(kFar);
        EXPECT_TRUE(waitFor([&] { return windowAt(kOnNotch) != glimmet.panel(); })) << what;
        EXPECT_TRUE(glimmet.running()) << what;
    }

    static constexpr double kHeldWidth = 236, kHeldHeight = 74;
};

TEST_F(StoredState, WhateverIsInTheFileItStarts) {
    QByteArray noise;
    for (int i = 0; i < 100000; ++i) noise.append(char(i * 7919 >> 3));
    const struct {
        const char* what;
        QByteArray contents;
        double width, height;
    } cases[] = {
        {"noise", noise, 185, 58},
        {"a line without an end", QByteArray(1000000, 'x'), 185, 58},
        {"wrong types", "glimmet.hidden = text yes\nglimmet.bites = bool true\nglimmet.shelf = number 3\n", 185, 58},
        {"JSON of another kind", "glimmet.bites = data {\"a\":[1,2\nglimmet.timers = data [[]]\n", 185, 58},
        {"a cut line after a whole one", "glimmet.hidden = bool true\nglimmet.bites = data [{\"li", 185, 37},
    };
    for (const auto& c : cases) {
        const Home fresh;
        fresh.setPreferences(c.contents);
        Glimmet glimmet(session, fresh);
        ASSERT_TRUE(glimmet.started()) << c.what;
        EXPECT_TRUE(waitForBody(c.width, c.height)) << c.what;
        expectAlive(glimmet, c.what);
    }
}

TEST_F(StoredState, WhereNothingCanBeWrittenItKeepsWhatItHoldsInMind) {
    const QString folder = home.filePath(QStringLiteral("config/glimmet"));
    ASSERT_TRUE(QDir().rmdir(folder));
    QFile inTheWay(folder);
    ASSERT_TRUE(inTheWay.open(QIODevice::WriteOnly));

    Glimmet glimmet(session, home, {QStringLiteral("--bites")});
    ASSERT_TRUE(glimmet.started());
    EXPECT_TRUE(waitForBody(kHeldWidth, kHeldHeight));
    expectAlive(glimmet, "no folder");
}

TEST_F(StoredState, BelongsToOneProgramThatMayBeAskedForItsMenu) {
    Glimmet first(session, home, {QStringLiteral("--bites")});
    ASSERT_TRUE(first.started());
    ASSERT_TRUE(waitFor([&] { return home.preferences().contains("glimmet.bites = "); }));
    const QByteArray held = home.preferences();
    for (const auto& [flag, error] :
         {std::pair{"--seed", "glimmet: already running for this user"}, {"--menudump", ""}}) {
        const Home lines;
        Glimmet second(session, home.environment(), lines, {QLatin1String(flag)});
        ASSERT_TRUE(waitFor([&] { return !second.running(); })) << flag;
        EXPECT_EQ(second.exitCode(), 0) << flag;
        EXPECT_EQ(second.errors().join(u'\n'), QLatin1String(error));
    }
    EXPECT_EQ(home.preferences(), held);
    first.kill();
    EXPECT_TRUE(Glimmet(session, home).started());
}

TEST_F(StoredState, OutlivesASuddenEnd) {
    for (const auto& [flag, key] : {std::pair{"--bites", "glimmet.bites = "}, {"--timer=600", "glimmet.timers = "}}) {
        const Home fresh;
        {
            Glimmet glimmet(session, fresh, {QLatin1String(flag)});
            ASSERT_TRUE(waitFor([&] { return fresh.preferences().contains(key); })) << flag;
            glimmet.kill();
        }
        const QByteArray held = fresh.preferences();
        // Killed while it writes the file anew, it leaves the old one or the new one.
        for (int pause = 0; pause < 8; ++pause) {
            Glimmet glimmet(session, fresh, {QStringLiteral("--hidden")});
            ASSERT_TRUE(waitFor([&] { return !glimmet.errors("glimmet: notch=").isEmpty(); }));
            letPass(0.002 * pause);
            glimmet.kill();
            ASSERT_TRUE(fresh.preferences().startsWith(held)) << flag << " after pause " << pause;
        }
        Glimmet glimmet(session, fresh, {QStringLiteral("--toy=critter"), QStringLiteral("--idle")});
        ASSERT_TRUE(glimmet.started());
        EXPECT_TRUE(waitForBody(kHeldWidth, kHeldHeight)) << flag;
    }
}

}  // namespace
