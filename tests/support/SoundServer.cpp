#include "support/SoundServer.h"

#include <QFileInfo>
#include <cstdlib>
#include <cstring>

SoundServer::SoundServer(const QString& path)
    : path_(path),
      server_(QStringLiteral("pulseaudio -n --daemonize=no --use-pid-file=no --exit-idle-time=-1 --disable-shm=yes")
                  .split(u' ') +
              QStringList{QStringLiteral("-L"), QStringLiteral("module-null-sink sink_name=nobody"),
                          QStringLiteral("-L"),
                          QStringLiteral("module-native-protocol-unix auth-anonymous=1 socket=") + path}) {}

testing::AssertionResult SoundServer::started() {
    return waitFor([this] { return QFileInfo::exists(path_) && !pactl({QStringLiteral("info")}).isEmpty(); }, 20);
}

QByteArray SoundServer::pactl(const QStringList& arguments) const {
    Child process(QStringList{QStringLiteral("pactl"), QStringLiteral("--server"), address()} + arguments);
    return process.waitForFinished(5000) && process.exitCode() == 0 ? process.readAllStandardOutput() : QByteArray();
}

testing::AssertionResult SoundServer::record() {
    recorder_.emplace(QStringLiteral("parec --device=nobody.monitor --raw --format=s16le --rate=8000 --channels=1 "
                                     "--latency-msec=50 --server %1")
                          .arg(address())
                          .split(u' '));
    return waitFor([this] { return loudest(), !samples_.isEmpty(); }, 10);
}

int SoundServer::loudest() {
    samples_ += recorder_->readAllStandardOutput();
    int loudest = 0;
    for (qsizetype i = 0; i + 1 < samples_.size(); i += 2) {
        qint16 sample = 0;
        std::memcpy(&sample, samples_.constData() + i, sizeof sample);
        loudest = std::max(loudest, std::abs(int(sample)));
    }
    return loudest;
}
