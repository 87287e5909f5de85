#include <gtest/gtest.h>

#include <QTemporaryDir>

#include "platform/linux/CanberraSounds.h"
#include "platform/linux/ThreadQueues.h"
#include "support/SoundServer.h"

using namespace Qt::StringLiterals;

namespace {

/// Sounds that go to a server of our own, which has one sink that nobody hears.
class SoundsTest : public testing::Test {
 protected:
    SoundsTest() {
        qputenv("HOME", QFile::encodeName(folder_.path()));
        qputenv("XDG_RUNTIME_DIR", QFile::encodeName(folder_.path()));
        qputenv("PULSE_SERVER", QFile::encodeName(u"unix:"_s + socket_));
    }

    void startServer() {
        server_ = std::make_unique<SoundServer>(socket_);
        ASSERT_TRUE(server_->started()) << "no sound server";
    }

    /// Whether the server plays something for this process now.
    bool playing() const {
        const QByteArray ours = "application.process.id = \"" + QByteArray::number(getpid()) + '"';
        return server_ && server_->pactl({u"list"_s, u"sink-inputs"_s}).contains(ours);
    }

    /// Whether all that was to be played has ended within `seconds`.
    testing::AssertionResult ends(double seconds) {
        const auto reached = std::make_shared<std::atomic<bool>>(false);
        queue_.run([reached] { *reached = true; });
        return waitFor([&] { return reached->load(); }, seconds);
    }

    QTemporaryDir folder_;
    QString socket_ = folder_.filePath(u"sound"_s);
    std::unique_ptr<SoundServer> server_;
    ThreadSerialQueue queue_;
    CanberraSounds sounds_{queue_};
};

TEST_F(SoundsTest, PlayWhereTheyCanAndHoldNothingUp) {
    sounds_.play(u"Glass"_s);
    EXPECT_TRUE(ends(5)) << "no server";
    startServer();
    sounds_.play(u"no such sound"_s);
    EXPECT_TRUE(ends(3));
    EXPECT_FALSE(playing());
    for (const QString& name : {u"Glass"_s, u"Pop"_s}) {
        SCOPED_TRACE(name.toStdString());
        sounds_.play(name);
        EXPECT_TRUE(waitFor([this] { return playing(); }));
        EXPECT_TRUE(ends(10));
        EXPECT_TRUE(waitFor([this] { return !playing(); }));
    }
    sounds_.play(u"Glass"_s);
    ASSERT_TRUE(waitFor([this] { return playing(); }));
    server_.reset();
    EXPECT_TRUE(ends(12)) << "the server ends in the middle";
}

}  // namespace
