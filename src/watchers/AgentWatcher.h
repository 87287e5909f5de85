#pragma once

#include <QString>

#include "creature/NotchModel.h"

class AgentDirectory;
class Workspace;

/// Looks every 2.5 seconds at what a companion tool says of its coding agents, and brings the terminal of one that
/// waits for the user forward. Main thread only; the references must outlive it.
class AgentWatcher {
 public:
    AgentWatcher(NotchModel& model, MainLoop& loop, Workspace& workspace,
                 QString folder = QStringLiteral("/tmp/mossel.agents"));

    /// The first scan comes after the first interval.
    void start();
    void scanAgents();
    /// Brings the terminal that the model names forward, or the user's own; nothing happens if it names none.
    void focusBlockedTerminal();

 private:
    struct Census;
    static Census takeCensus(const AgentDirectory& directory);
    void apply(const Census& census);

    NotchModel& m_;
    MainLoop& loop_;
    Workspace& workspace_;
    QString folder_;
    int lastAlive_ = -1;  // records in the scan before; -1: there was none
    TimerHandle timer_;
};
