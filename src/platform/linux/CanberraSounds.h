#pragma once

#include "platform/BackgroundQueue.h"
#include "platform/Sounds.h"

/// Plays the user's sound theme through libcanberra on a PulseAudio server (or PipeWire's); silent without one. Each
/// sound uses a new connection, on the queue. Main thread only; the queue must outlive the object.
class CanberraSounds : public Sounds {
 public:
    explicit CanberraSounds(SerialQueue& queue) : queue_(queue) {}

    void play(const QString& name) override;

 private:
    SerialQueue& queue_;
};
