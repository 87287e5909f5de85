#pragma once

#include "creature/BehaviourEngine.h"
#include "creature/NotchModel.h"
#include "support/ManualLoop.h"
#include "support/MemoryPorts.h"

/// A model in virtual time with ports in memory, at a notch of 185 x 32 in the middle of a screen of 1512 x 982.
struct CreatureFixture {
    CreatureFixture() {
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
    ShelfPorts shelf(const QString& dataFolder = QStringLiteral("/nonexistent")) {
        return {preferences, files, worker, jobs, pasteboard, dataFolder};
    }
    NotchModel m{clock, loop, shelf()};
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
