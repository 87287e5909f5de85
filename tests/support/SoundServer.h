#pragma once

#include <QFile>
#include <QProcess>
#include <memory>

#include "support/XSession.h"

/// A PulseAudio server of our own with one sink that nobody hears. Ends, by its own id, with this object.
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

    /// What is heard from the sink, from now on. Ends with this object.
    class Recording {
     public:
        explicit Recording(const SoundServer& server);
        ~Recording();
        /// Waits until something, be it silence, is recorded.
        [[nodiscard]] testing::AssertionResult started();
        /// The largest sample so far, of at most 32768.
        int loudest();

     private:
        QProcess process_;
        QByteArray samples_;
    };

 private:
    QString path_;
    std::unique_ptr<Child> server_;
};
