#pragma once

#include <memory>

#include "platform/Lifetime.h"
#include "platform/MainLoop.h"
#include "platform/Players.h"
#include "platform/linux/mpris/MprisWatch.h"
#include "platform/linux/x11/WindowTitles.h"

/// The players of the session bus, and the browsers' windows.
class MprisPlayers : public Players {
 public:
    /// `titles` may be null, where windows cannot be seen.
    MprisPlayers(MainLoop& loop, std::unique_ptr<WindowTitles> titles);
    ~MprisPlayers() override;

    void watch(bool on) override;
    bool isRunning(const QString& application) const override;
    std::optional<Track> track(const QString& player) const override;
    void tabs(const QString& browser, std::function<void(std::optional<QList<Track>>)> then) override;
    std::optional<Track> paused(const QString& application) const override;
    void run(const QString& player, Verb verb) override;
    void seek(const QString& player, double seconds) override;

    /// Whether the application has something on the bus that plays or has paused, and so can be told what to do.
    bool canRun(const QString& application) const;

 private:
    /// What of the application is playing, else what has played last; null if nothing of it is on the bus.
    const MprisEntry* currentOf(const QString& application) const;

    MainLoop& loop_;
    std::unique_ptr<WindowTitles> titles_;
    std::shared_ptr<MprisWatch> watch_;  // null while off
    int watches_ = 0;                    // how often it was switched on
    QList<MprisEntry> entries_;
    Lifetime lifetime_;
};
