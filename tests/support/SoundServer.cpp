#include "support/SoundServer.h"

#include <QFileInfo>

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

bool SoundServer::plays(qint64 pid) const {
    const QByteArray inputs = pactl({QStringLiteral("list"), QStringLiteral("sink-inputs")});
    return inputs.contains("application.process.id = \"" + QByteArray::number(pid) + '"');
}
