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
    const QString socket = QString::fromUtf8(folder.path("sound"));
    const EnvironmentVariable home("HOME", folder.path()), runtime("XDG_RUNTIME_DIR", folder.path()),
        pulse("PULSE_SERVER", "unix:" + folder.path("sound"));
    ThreadSerialQueue queue;
    CanberraSounds sounds(queue);
    std::unique_ptr<SoundServer> server;
    const QByteArray ours = "application.process.id = \"" + QByteArray::number(getpid()) + '"';
    const auto playing = [&] { return server->pactl({u"list"_s, u"sink-inputs"_s}).contains(ours); };
    const auto ends = [&](double seconds) {
        const auto reached = std::make_shared<std::atomic<bool>>(false);
        queue.run([reached] { *reached = true; });
        return waitFor([&] { return reached->load(); }, seconds);
    };
    sounds.play(u"Glass"_s);
    EXPECT_TRUE(ends(5)) << "no server";
    server = std::make_unique<SoundServer>(socket);
    ASSERT_TRUE(server->started());
    sounds.play(u"no such sound"_s);
    EXPECT_TRUE(ends(3));
    EXPECT_FALSE(playing());
    for (const QString& name : {u"Glass"_s, u"Pop"_s}) {
        SCOPED_TRACE(name.toStdString());
        sounds.play(name);
        EXPECT_TRUE(waitFor(playing));
        EXPECT_TRUE(ends(10));
        EXPECT_TRUE(waitFor([&] { return !playing(); }));
    }
    sounds.play(u"Glass"_s);
    ASSERT_TRUE(waitFor(playing));
    server.reset();
    EXPECT_TRUE(ends(12)) << "the server ends in the middle";
}
}  // namespace
