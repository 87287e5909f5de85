#pragma once

#include <QFileInfo>

#include "support/XSession.h"

/// A PulseAudio server of our own with one sink that nobody hears.
class SoundServer {
 public:
    /// It listens on the socket `path`, and has XDG_RUNTIME_DIR from the environment.
    explicit SoundServer(const QString& path) : path_(path) {}

    /// Waits until it answers.
    [[nodiscard]] testing::AssertionResult started() {
        return waitFor([this] { return QFileInfo::exists(path_) && !pactl({QStringLiteral("info")}).isEmpty(); }, 20);
    }
    /// What PULSE_SERVER must be for its clients.
    QString address() const { return QStringLiteral("unix:") + path_; }
    /// What pactl prints; empty if it fails.
    QByteArray pactl(const QStringList& arguments) const {
        Child process(QStringList{QStringLiteral("pactl"), QStringLiteral("--server"), address()} + arguments);
        return process.waitForFinished(5000) && process.exitCode() == 0 ? process.readAllStandardOutput()
                                                                        : QByteArray();
    }
    /// Whether it plays something for this process now.
    bool plays(qint64 pid) const {
        const QByteArray inputs = pactl({QStringLiteral("list"), QStringLiteral("sink-inputs")});
        return inputs.contains("application.process.id = \"" + QByteArray::number(pid) + '"');
    }

 private:
    QString path_;
    Child server_{QStringLiteral("pulseaudio|-n|--daemonize=no|--use-pid-file=no|--exit-idle-time=-1|--disable-shm=yes|"
                                 "-L|module-null-sink sink_name=nobody|"
                                 "-L|module-native-protocol-unix auth-anonymous=1 socket=%1")
                      .arg(path_)
                      .split(u'|')};
};
