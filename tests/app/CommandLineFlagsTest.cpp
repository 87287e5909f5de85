#include <gtest/gtest.h>

#include "app/CommandLineFlags.h"
#include "support/Creature.h"

namespace {

struct FlagsFixture : BehaviourFixture {
    std::optional<CommandLineFlags> flags;

    FlagEffects apply(std::initializer_list<const char*> arguments) {
        QStringList list{QStringLiteral("glimmet")};
        for (const char* argument : arguments) list.append(QString::fromUtf8(argument));
        return flags.emplace(m, shelf, engine, loop, list).apply();
    }
};

TEST(Flags, ToyIsPickedByItsBeginning) {
    for (const char* argument : {"--toy=Weather", "--toy=wea", "--toy=", "--toy=C"}) {
        FlagsFixture f;
        f.m.hidden = true;
        EXPECT_TRUE(f.apply({argument}).demo && f.m.hovering && !f.m.hidden) << argument;
        EXPECT_EQ(f.m.toy, QByteArray(argument).toLower().contains('w') ? Toy::weather : Toy::critter) << argument;
        EXPECT_EQ(f.m.cursor.get(), QPointF(796, 752));
    }
    FlagsFixture f;
    EXPECT_FALSE(f.apply({"--toy=x", "--toy=weather", "--TOY=weather", "-toy=w"}).demo || f.m.hovering);
}

TEST(Flags, CursorNeedsExactlyTwoNumbersAndSkyHasADefault) {
    const auto after = [](const char* argument) {
        FlagsFixture f;
        f.m.sky = Sky::fog;
        f.apply({argument});
        return std::tuple(f.m.cursor.get(), f.m.sky.get(), f.m.tempC.get());
    };
    const QPointF middle(756, 762);
    for (const char* bad : {"--cursor=10,20,30", "--cursor=10", "--cursor=", "--cursor=nan,inf"})
        EXPECT_EQ(std::get<QPointF>(after(bad)), middle) << bad;
    for (const char* good : {"--cursor=,10,,20", "--cursor=10,x,20"})
        EXPECT_EQ(std::get<QPointF>(after(good)), QPointF(766, 962)) << good;
    for (const auto& [argument, sky] : {std::pair("--sky=Rain", Sky::rain),
                                        {"--sky=cloud", Sky::cloudy},
                                        {"--sky=NIGHT", Sky::clearNight},
                                        {"--sky=sunny", Sky::clearDay}})
        EXPECT_EQ(after(argument), std::tuple(middle, sky, std::optional(21.0))) << argument;
}

TEST(Flags, TakeEffectInAFixedOrder) {
    FlagsFixture f;
    const FlagEffects effects =
        f.apply({"--idle", "--low", "--charging", "--seed", "--bigseed", "--hidden", "--toy=c", "--mic", "--nonsense",
                 "--whispers", "--update", "--timer=soon", "--slide=", "--timer=5", "--slide=nan"});
    EXPECT_TRUE(f.m.timers->isEmpty() && f.m.slideX == 0.0) << "malformed numbers are ignored";
    EXPECT_EQ(f.m.battery, 0.12);
    EXPECT_FALSE(f.m.charging);
    EXPECT_EQ(f.m.items->size(), 2);
    EXPECT_EQ(f.m.items->first().toLocalFile(), QStringLiteral("/System/Applications/Notes.app"));
    EXPECT_TRUE(f.m.hidden && !f.m.hovering);
    EXPECT_TRUE(f.m.batteryPinned && f.m.privacyPinned && !effects.screenTest);
    EXPECT_TRUE(f.m.eventWhisper.get() && f.m.updateAvailable.get());
}

TEST(Flags, ReactionsFollowALittleLater) {
    FlagsFixture f;
    f.apply({"--yawn", "--worry", "--spawn", "--needsyou", "--slide=20"});
    EXPECT_EQ(f.m.slideX, 20.0) << "this at once";
    f.loop.advance(1.49);
    EXPECT_EQ(f.m.worryCount + f.m.spawnCount, 0);
    f.loop.advance(0.02);
    EXPECT_TRUE(f.m.worryCount == 1 && f.m.spawnCount == 2 && f.m.yawning);
}

TEST(Flags, GiveTheBodyItsSize) {
    const std::tuple<const char*, const char*, QSizeF> cases[] = {
        {"--toy=wea", "", {300, 94}},     {"--targeted", "", {300, 120}},        {"--music", "", {300, 138}},
        {"--bites", "", {320, 152}},      {"--bigseed", "--expand", {320, 228}}, {"--timer=60", "--idle", {236, 74}},
        {"--hidden", "--idle", {185, 37}}};
    for (const auto& [flag, other, shape] : cases) {
        FlagsFixture f;
        f.apply({flag, other, "--toy=c"});
        EXPECT_EQ(QSizeF(f.m.shapeWidth(), f.m.shapeHeight()), shape) << flag << other;
    }
}

TEST(Flags, SetTheSensesStates) {
    const std::pair<const char*, Published<bool> NotchModel::*> cases[] = {
        {"--camera", &NotchModel::cameraInUse},      {"--mic", &NotchModel::micInUse},
        {"--charging", &NotchModel::charging},       {"--caps", &NotchModel::capsOn},
        {"--offline", &NotchModel::offline},         {"--disk", &NotchModel::diskFull},
        {"--downloading", &NotchModel::downloading}, {"--chewing", &NotchModel::chewing},
        {"--needsyou", &NotchModel::needsYou}};
    for (const auto& [flag, state] : cases) {
        FlagsFixture f;
        f.apply({flag});
        for (const auto& [name, other] : cases) EXPECT_EQ(f.m.*other, other == state) << name << " after " << flag;
    }
}

}  // namespace
