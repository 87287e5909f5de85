#include <QDir>

#include "desktop/DesktopTest.h"

namespace {

class StoredState : public DesktopTest {
 protected:
    /// Whether it still notices the pointer.
    void expectAlive() {
        session.glide(kFar, kOnNotch, 5, 10);
        EXPECT_TRUE(waitFor([&] { return windowAt(kOnNotch) == glimmet->panel(); }));
        session.moveTo(kFar);
        EXPECT_TRUE(waitFor([&] { return windowAt(kOnNotch) != glimmet->panel(); }));
    }
};

TEST_F(StoredState, WhateverIsInTheFileItStarts) {
    QByteArray noise;
    for (int i = 0; i < 100000; ++i) noise.append(char(i * 7919 >> 3));
    home.setPreferences(noise +
                        "\nglimmet.shelf = number 3\nglimmet.timers = data [[]]\nglimmet.bites = data {\"a\":[1,2\n"
                        "glimmet.hidden = bool true\nglimmet.bites = data [{\"li");
    ASSERT_NO_FATAL_FAILURE(start());
    EXPECT_TRUE(waitForBody(185, 37)) << "hidden, as the last whole line says";
    expectAlive();
}

TEST_F(StoredState, WhereNothingCanBeWrittenItKeepsWhatItHoldsInMind) {
    ASSERT_TRUE(QDir().rmdir(home.filePath(QStringLiteral("config/glimmet"))));
    home.write(QStringLiteral("config/glimmet"), "in the way");
    ASSERT_NO_FATAL_FAILURE(start({QStringLiteral("--bites")}));
    EXPECT_TRUE(waitForBody(236, 74));
    expectAlive();
}

TEST_F(StoredState, BelongsToOneProgramAndOutlivesItsSuddenEnd) {
    ASSERT_NO_FATAL_FAILURE(start({QStringLiteral("--bites"), QStringLiteral("--timer=600")}));
    ASSERT_TRUE(home.holds("glimmet.bites", "note") && home.holds("glimmet.timers", "minutes"));
    const QByteArray held = home.preferences();
    for (const auto& [flag, error] :
         {std::pair{"--seed", "glimmet: already running for this user"}, {"--menudump", ""}}) {
        const Home elsewhere;
        Glimmet second(&session, home, {QLatin1String(flag)}, {}, &elsewhere);
        EXPECT_TRUE(second.ends()) << flag;
        EXPECT_EQ(second.errors().join(u'\n'), QLatin1String(error));
    }
    EXPECT_EQ(home.preferences(), held);
    glimmet->kill();
    EXPECT_EQ(home.preferences(), held);
    ASSERT_NO_FATAL_FAILURE(start());
    EXPECT_TRUE(waitForBody(236, 74));
}

}  // namespace
