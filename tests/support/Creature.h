#pragma once

#include "creature/BehaviourEngine.h"
#include "creature/NotchModel.h"
#include "shelf/Shelf.h"
#include "support/ManualLoop.h"
#include "support/MemoryPorts.h"

/// A model and its shelf in virtual time with ports in memory, at a notch of 185 x 32 in the middle of a screen of
/// 1512 x 982.
struct CreatureFixture {
    /// `folder` is where the user's programs keep their data.
    explicit CreatureFixture(const QString& folder = QStringLiteral("/nonexistent")) : dataFolder(folder) {
        m.centerX = 756;
        m.screenTop = 982;
        m.cursor = QPointF(756, 762);
    }

    ManualClock clock;
    ManualLoop loop{clock};
    MemoryPreferences preferences;
    MemoryFiles files;
    MemoryWorker worker;
    HeldQueue jobs;
    MemoryPasteboard pasteboard;
    const QString dataFolder;
    ShelfPorts shelfPorts() { return {clock, loop, preferences, files, worker, jobs, pasteboard, dataFolder}; }
    NotchModel m;
    Shelf shelf{m, shelfPorts()};
};

/// The same with its behaviour. `traces` collects the trace lines.
struct BehaviourFixture : CreatureFixture {
    MemorySounds sounds;
    QStringList traces;
    double nextRandom = 0.5;
    BehaviourEngine engine{
        m, clock, loop, sounds, [this] { return nextRandom; }, [this](const QString& line) { traces.append(line); }};

    /// Moves the pointer to a place relative to the top centre of the screen (y downwards) after `elapsed` seconds.
    void moveTo(double x, double down, double elapsed = 0.1) {
        loop.advance(elapsed);
        engine.pointerMoved({m.centerX + x, m.screenTop - down});
    }
};
