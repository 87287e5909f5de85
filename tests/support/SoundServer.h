#pragma once

#include <optional>

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

    /// Begins to record what is heard from the sink; returns once something, be it silence, has come.
    [[nodiscard]] testing::AssertionResult record();
    /// The largest sample recorded so far, of at most 32768.
    int loudest();

 private:
    QString path_;
    Child server_;
    std::optional<Child> recorder_;
    QByteArray samples_;
};
