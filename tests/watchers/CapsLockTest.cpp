#include <gtest/gtest.h>

#include "support/Creature.h"
#include "watchers/CapsLock.h"

namespace {

TEST(CapsLock, FadesInAndOutAndIgnoresWhatIsNoChange) {
    CreatureFixture f;
    CapsLock caps(f.m);
    std::vector<std::pair<bool, std::optional<Animation>>> changes;
    const Subscription subscription = f.m.objectDidChange.subscribe(
        [&](const std::optional<Animation>& how) { changes.emplace_back(f.m.capsOn, how); });
    for (const bool on : {false, true, true, false, false}) caps.capsChanged(on);
    const auto fade = std::optional(Animation::easeOut(0.2));
    EXPECT_EQ(changes, (decltype(changes){{true, fade}, {false, fade}}));
}

}  // namespace
