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
    std::optional<QString> track(const QString& player) override;
    void tabs(const QString& browser, std::function<void(std::optional<QList<Tab>>)> then) override;
    bool isPaused(const QString& application) const override;
    QUrl cover(const QString& application) const override;
    void run(const QString& player, Verb verb) override;
    void seek(const QString& player, double seconds) override;

    /// Whether any browser plays or has paused, so that it can be told what to do.
    bool hasBrowser() const { return currentBrowser() != nullptr; }
    /// Tells the browser that is playing, else the one that played last.
    void runBrowser(Verb verb);

 private:
    const MprisEntry* current(const std::function<bool(const MprisEntry&)>& isCandidate) const;
    const MprisEntry* currentOf(const QString& application) const;
    const MprisEntry* currentBrowser() const;
    void tell(const MprisEntry* entry, Verb verb);

    MainLoop& loop_;
    std::unique_ptr<WindowTitles> titles_;
    std::shared_ptr<MprisWatch> watch_;  // null while off
    int watches_ = 0;                    // how often it was switched on
    QList<MprisEntry> entries_;
    Lifetime lifetime_;
};
