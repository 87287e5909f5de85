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
    for (const auto& [argument, toy] : std::vector<std::pair<const char*, Toy>>{{"--toy=Weather", Toy::weather},
                                                                                {"--toy=wea", Toy::weather},
                                                                                {"--toy=", Toy::critter},
                                                                                {"--toy=C", Toy::critter}}) {
        FlagsFixture f;
        f.m.hidden = true;
        EXPECT_TRUE(f.apply({argument}).demo) << argument;
        EXPECT_EQ(f.m.toy, toy) << argument;
        EXPECT_FALSE(f.m.hidden);
        EXPECT_TRUE(f.m.hovering);
        EXPECT_EQ(f.m.cursor.get(), QPointF(796, 752));
    }
    FlagsFixture f;
    EXPECT_FALSE(f.apply({"--toy=x", "--toy=weather", "--TOY=weather", "-toy=w"}).demo);
    EXPECT_FALSE(f.m.hovering);
}

TEST(Flags, CursorNeedsExactlyTwoNumbers) {
    for (const auto& [argument, cursor] :
         std::vector<std::pair<const char*, QPointF>>{{"--cursor=10,20,30", {756, 762}},
                                                      {"--cursor=10", {756, 762}},
                                                      {"--cursor=", {756, 762}},
                                                      {"--cursor=nan,inf", {756, 762}},
                                                      {"--cursor=,10,,20", {766, 962}},
                                                      {"--cursor=10,x,20", {766, 962}}}) {
        FlagsFixture f;
        f.apply({argument});
        EXPECT_EQ(f.m.cursor.get(), cursor) << argument;
    }
}

TEST(Flags, SkyHasNamesAndADefault) {
    for (const auto& [argument, sky] : std::vector<std::pair<const char*, Sky>>{{"--sky=Rain", Sky::rain},
                                                                                {"--sky=cloud", Sky::cloudy},
                                                                                {"--sky=NIGHT", Sky::clearNight},
                                                                                {"--sky=sunny", Sky::clearDay},
                                                                                {"--sky=storm", Sky::storm}}) {
        FlagsFixture f;
        f.m.sky = Sky::fog;
        f.apply({argument});
        EXPECT_EQ(f.m.sky, sky) << argument;
        EXPECT_EQ(f.m.tempC.get(), 21.0);
    }
}

TEST(Flags, TakeEffectInAFixedOrder) {
    FlagsFixture f;
    const FlagEffects effects =
        f.apply({"--idle", "--low", "--charging", "--seed", "--bigseed", "--hidden", "--toy=c", "--mic", "--nonsense"});
    EXPECT_EQ(f.m.battery, 0.12);
    EXPECT_FALSE(f.m.charging);
    EXPECT_EQ(f.m.items->size(), 2);
    EXPECT_EQ(f.m.items->first().toLocalFile(), QStringLiteral("/System/Applications/Notes.app"));
    EXPECT_TRUE(f.m.hidden);
    EXPECT_FALSE(f.m.hovering);
    EXPECT_TRUE(f.m.batteryPinned && f.m.privacyPinned && !effects.screenTest);
}

TEST(Flags, MalformedNumbersAreIgnored) {
    FlagsFixture f;
    f.apply({"--timer=soon", "--slide=", "--timer=5", "--slide=nan"});
    EXPECT_TRUE(f.m.timers->isEmpty());
    EXPECT_EQ(f.m.slideX, 0.0);
}

TEST(Flags, ReactionsFollowALittleLater) {
    FlagsFixture f;
    f.apply({"--yawn", "--worry", "--spawn", "--needsyou"});
    f.loop.advance(1.49);
    EXPECT_EQ(f.m.worryCount + f.m.spawnCount, 0);
    f.loop.advance(0.02);
    EXPECT_EQ(f.m.worryCount, 1);
    EXPECT_EQ(f.m.spawnCount, 2);
    EXPECT_TRUE(f.m.yawning);
}

TEST(Flags, GiveTheBodyItsSize) {
    const struct {
        const char* flags[3];
        QSizeF shape;
    } cases[] = {
        {{"--toy=wea", "", ""}, {300, 94}},
        {{"--toy=c", "--targeted", ""}, {300, 120}},
        {{"--toy=c", "--music", ""}, {300, 138}},
        {{"--toy=c", "--bites", ""}, {320, 152}},
        {{"--toy=c", "--bigseed", "--expand"}, {320, 228}},
        {{"--toy=c", "--timer=60", "--idle"}, {236, 74}},
        {{"--toy=c", "--hidden", "--idle"}, {185, 37}},
    };
    for (const auto& c : cases) {
        FlagsFixture f;
        f.apply({c.flags[0], c.flags[1], c.flags[2]});
        EXPECT_EQ(QSizeF(f.m.shapeWidth(), f.m.shapeHeight()), c.shape) << c.flags[0] << c.flags[1] << c.flags[2];
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
        EXPECT_TRUE(!f.m.eventWhisper.get() && !f.m.updateAvailable.get());
    }
    FlagsFixture f;
    f.apply({"--whispers", "--update"});
    EXPECT_TRUE(f.m.eventWhisper.get() && f.m.updateAvailable.get());
}

}  // namespace
