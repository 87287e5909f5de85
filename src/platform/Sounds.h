#pragma once

#include <QString>

/// Plays short sounds by name. Main thread only.
class Sounds {
 public:
    virtual ~Sounds() = default;

    /// Starts the sound called `name` ("Glass", "Pop") and returns at once; a sound that is missing is skipped.
    virtual void play(const QString& name) = 0;
};
