#pragma once

#include <QString>

#include "creature/NotchModel.h"
#include "platform/BackgroundJobs.h"

class AgentDirectory;
class Workspace;

/// Looks every 2.5 seconds at what a companion tool says of its coding agents, and brings the terminal of one that
/// waits for the user forward. Main thread only; the references must outlive it, and the loop the queue's jobs.
class AgentWatcher {
 public:
    AgentWatcher(NotchModel& model, MainLoop& loop, BackgroundQueue& disk, Workspace& workspace,
                 QString folder = QStringLiteral("/tmp/mossel.agents"));

    /// The first scan comes after the first interval.
    void start();
    /// Looks now, on the queue; what was seen is in the model when the main loop has come to it. Does nothing while an
    /// earlier look is under way.
    void scanAgents();
    /// Brings the terminal that the model names forward, or the user's own; nothing happens if it names none.
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
    int lastAlive_ = -1;  // records in the scan before; -1: there was none
    TimerHandle timer_;
    BackgroundJobs jobs_;
};
