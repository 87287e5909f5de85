#pragma once

#include "support/XSession.h"

/// A PulseAudio server of our own with one sink that nobody hears.
class SoundServer {
 public:
    /// It listens on the socket `path`, and has XDG_RUNTIME_DIR from the environment.
    explicit SoundServer(const QString& path);

    /// Waits until it answers.
    [[nodiscard]] testing::AssertionResult started();
    /// What PULSE_SERVER must be for its clients.
    QString address() const { return QStringLiteral("unix:") + path_; }
    /// What pactl prints; empty if it fails.
    QByteArray pactl(const QStringList& arguments) const;

    /// Whether it plays something for this process now.
    bool plays(qint64 pid) const;

 private:
    QString path_;
    Child server_;
};
