#include "support/SoundServer.h"

#include <QFileInfo>
#include <cstdlib>
#include <cstring>

SoundServer::SoundServer(const QString& path) : path_(path) {
    const std::string listen = "module-native-protocol-unix auth-anonymous=1 socket=" + path.toStdString();
    server_ = std::make_unique<Child>(
        std::vector<std::string>{"pulseaudio", "-n", "--daemonize=no", "--use-pid-file=no", "--exit-idle-time=-1",
                                 "--disable-shm=yes", "-L", "module-null-sink sink_name=nobody", "-L", listen});
}

testing::AssertionResult SoundServer::started() {
    return waitFor([this] { return QFileInfo::exists(path_) && !pactl({QStringLiteral("info")}).isEmpty(); }, 20);
}

QByteArray SoundServer::pactl(const QStringList& arguments) const {
    QProcess process;
    process.start(QStringLiteral("pactl"), QStringList{QStringLiteral("--server"), address()} + arguments);
    return process.waitForFinished(5000) && process.exitCode() == 0 ? process.readAllStandardOutput() : QByteArray();
}

SoundServer::Recording::Recording(const SoundServer& server) {
    process_.start(QStringLiteral("parec"),
                   {QStringLiteral("--server"), server.address(), QStringLiteral("--device=nobody.monitor"),
                    QStringLiteral("--raw"), QStringLiteral("--format=s16le"), QStringLiteral("--rate=8000"),
                    QStringLiteral("--channels=1"), QStringLiteral("--latency-msec=50")});
}

SoundServer::Recording::~Recording() {
    process_.kill();
    process_.waitForFinished(3000);
}

testing::AssertionResult SoundServer::Recording::started() {
    return waitFor(
        [this] {
            loudest();
            return !samples_.isEmpty();
        },
        10);
}

int SoundServer::Recording::loudest() {
    samples_ += process_.readAllStandardOutput();
    int loudest = 0;
    for (qsizetype i = 0; i + 1 < samples_.size(); i += 2) {
        qint16 sample = 0;
        std::memcpy(&sample, samples_.constData() + i, sizeof sample);
        loudest = std::max(loudest, std::abs(int(sample)));
    }
    return loudest;
}
