#include <gtest/gtest.h>

#include "platform/linux/CanberraSounds.h"
#include "platform/linux/ThreadQueues.h"
#include "support/Environment.h"
#include "support/SoundServer.h"
#include "support/TestFolder.h"

using namespace Qt::StringLiterals;

namespace {
TEST(Sounds, PlayWhereTheyCanAndHoldNothingUp) {
    const TestFolder folder;
    const EnvironmentVariable home("HOME", folder.path()), runtime("XDG_RUNTIME_DIR", folder.path()),
        pulse("PULSE_SERVER", "unix:" + folder.path("sound"));
    ThreadSerialQueue queue;
    CanberraSounds sounds(queue);
    const auto ends = [&](double seconds) {
        const auto reached = std::make_shared<std::atomic<bool>>(false);
        queue.run([reached] { *reached = true; });
        return waitFor([&] { return reached->load(); }, seconds);
    };
    sounds.play(u"Pop"_s);
    EXPECT_TRUE(ends(5)) << "no server";
    auto server = std::make_unique<SoundServer>(QString::fromUtf8(folder.path("sound")));
    ASSERT_TRUE(server->started());
    const auto playing = [&] { return server->plays(getpid()); };
    sounds.play(u"no such sound"_s);
    EXPECT_TRUE(ends(3));
    EXPECT_FALSE(playing());
    // The other one is heard on the desktop.
    sounds.play(u"Pop"_s);
    EXPECT_TRUE(waitFor(playing));
    EXPECT_TRUE(ends(10));
    EXPECT_TRUE(waitFor([&] { return !playing(); }));
    sounds.play(u"Pop"_s);
    ASSERT_TRUE(waitFor(playing));
    server.reset();
    EXPECT_TRUE(ends(12)) << "the server ends in the middle";
}
}  // namespace
