#include <sys/prctl.h>

#include <QFileInfo>
#include <QJsonDocument>
#include <QJsonObject>
#include <QLocalSocket>

#include "desktop/DesktopTest.h"

using namespace Qt::StringLiterals;

namespace {

/// A session bus, and mpv on it.
class Music : public DesktopTest {
 protected:
    Music() {
        variables = {{"DBUS_SESSION_BUS_ADDRESS", address}};
        home.setPreferences("glimmet.music = bool true\n");
    }

    /// Plays two files in a loop, without sound.
    void startPlayer() {
        // The header of a WAV file, and a minute of 8000 samples a second.
        const QByteArray silence = QByteArray::fromHex(
                                       "524946462453070057415645666d742010000000010001"
                                       "00401f0000401f0000010008006461746100530700") +
                                   QByteArray(480'000, '\x80');
        for (const char* name : {"a.wav", "b.wav"}) home.write(name, silence);
        QProcessEnvironment environment = home.environment();
        environment.insert(u"DBUS_SESSION_BUS_ADDRESS"_s, address);
        player.setProcessEnvironment(environment);
        player.setChildProcessModifier([] { prctl(PR_SET_PDEATHSIG, SIGKILL); });
        const auto file = [this](const char* name) { return QString::fromUtf8(home.path(name)); };
        player.start(u"mpv"_s, {u"--no-video"_s, u"--ao=null"_s, u"--really-quiet"_s, u"--loop-playlist"_s,
                                u"--input-ipc-server="_s + file("mpv"), file("a.wav"), file("b.wav")});
        ASSERT_TRUE(player.waitForStarted());
    }
    ~Music() override {
        player.kill();
        player.waitForFinished();
    }
    /// What mpv itself says about a property of its.
    QString told(const QString& property) const {
        QLocalSocket socket;
        socket.connectToServer(QString::fromUtf8(home.path("mpv")));
        if (!socket.waitForConnected(1000)) return {};
        socket.write(R"({"command": ["get_property", ")" + property.toLatin1() + "\"]}\n");
        QByteArray answer;
        while (!answer.contains("\"data\"") && !answer.contains("error\":\"prop") && socket.waitForReadyRead(1000))
            answer += socket.readAll();
        for (const QByteArray& line : answer.split('\n')) {
            const QJsonObject object = QJsonDocument::fromJson(line).object();
            if (object.contains(u"data"_s)) return object[u"data"_s].toVariant().toString();
        }
        return {};
    }
    testing::AssertionResult tells(const QString& property, const QString& value) const {
        return waitFor([&] { return told(property) == value; });
    }
    void clickAt(QPoint place) {
        session.glide(place - QPoint(0, 5), place, 5, 10);
        session.click(place);
    }

    const QString address = u"unix:path="_s + QString::fromUtf8(home.path("runtime/bus"));
    Child bus{{u"dbus-daemon"_s, u"--session"_s, u"--nofork"_s, u"--nopidfile"_s, u"--address="_s + address}};
    Variables variables;
    QProcess player;

    static constexpr QPoint kPrevious{815, 93}, kPlayPause{841, 93}, kNext{867, 93};
};

TEST_F(Music, OfARealPlayerIsSeenPausedSkippedAndSought) {
    ASSERT_TRUE(waitFor([&] { return QFileInfo::exists(QString::fromUtf8(home.path("runtime/bus"))); }));
    ASSERT_NO_FATAL_FAILURE(start({}, variables));
    session.moveTo(kOnNotch);
    ASSERT_TRUE(waitForBody(214, 108));
    ASSERT_NO_FATAL_FAILURE(startPlayer());
    ASSERT_TRUE(waitForBody(300, 138));
    // A triangle has ink in its middle, two bars have not.
    const auto offersToPlay = [this] {
        return QColor(session.screenshot(QRect(kPlayPause, QSize(1, 1))).pixel(0, 0)).lightness() > 100;
    };
    clickAt(kPlayPause);
    EXPECT_TRUE(tells(u"pause"_s, u"true"_s));
    EXPECT_TRUE(waitFor(offersToPlay)) << "it stays under the pointer";
    EXPECT_TRUE(waitForBody(300, 138));
    clickAt(kPlayPause);
    EXPECT_TRUE(tells(u"pause"_s, u"false"_s));
    EXPECT_TRUE(waitFor([&] { return !offersToPlay(); }));
    clickAt(kNext);
    EXPECT_TRUE(tells(u"media-title"_s, u"b.wav"_s));
    clickAt(kPrevious);
    EXPECT_TRUE(tells(u"media-title"_s, u"a.wav"_s));
    const auto isBeyond = [this](double seconds) { return told(u"time-pos"_s).toDouble() > seconds; };
    ASSERT_TRUE(waitFor([&] { return isBeyond(0.1); })) << "mpv does not seek before it plays";
    session.click(kPrevious, 5);
    EXPECT_TRUE(waitFor([&] { return isBeyond(5); }, 3));
    player.terminate();
    EXPECT_TRUE(waitForBody(214, 108)) << "when the player ends";
}

}  // namespace
