#pragma once

#include "platform/BackgroundQueue.h"
#include "platform/Sounds.h"

/// Plays the user's sound theme through libcanberra on a PulseAudio server, which PipeWire has too; without one there
/// is silence. The connection is made in the queue for each sound and gone afterwards. Main thread only; the queue must
/// outlive the object.
class CanberraSounds : public Sounds {
 public:
    explicit CanberraSounds(SerialQueue& queue) : queue_(queue) {}

    void play(const QString& name) override;

 private:
    SerialQueue& queue_;
};
