#pragma once

#include <QString>

#include "creature/NotchModel.h"
#include "platform/BackgroundJobs.h"

class AgentDirectory;
class Workspace;

/// Scans every 2.5 seconds what a companion tool reports about its coding agents, and can bring forward the terminal of
/// one that is waiting for the user. Main thread only; the references must outlive it, and `loop` must outlive `disk`.
class AgentWatcher {
 public:
    AgentWatcher(NotchModel& model, MainLoop& loop, BackgroundQueue& disk, Workspace& workspace,
                 QString folder = QStringLiteral("/tmp/mossel.agents"));

    /// The first scan comes after the first interval.
    void start();
    /// Scans on the queue and later updates the model through the main loop. Does nothing while an earlier scan is
    /// running.
    void scanAgents();
    /// Brings forward the terminal that the model names, or the user's default one; does nothing if it names none.
    void focusBlockedTerminal();

 private:
    struct Census;
    static Census takeCensus(AgentDirectory& directory);
    void apply(const Census& census);

    NotchModel& model_;
    MainLoop& loop_;
    Workspace& workspace_;
    QString folder_;
    bool scanning_ = false;
    int lastAlive_ = -1;  // records in the previous scan; -1 before the first
    TimerHandle timer_;
    BackgroundJobs jobs_;
};
