#pragma once

#include <QUuid>

#include "platform/Clock.h"

/// A countdown in the creature's mouth.
struct HeldTimer {
    QUuid id;
    Date fireAt;        ///< when the countdown ends
    int minutes = 1;    ///< the length asked for, at least 1
    bool done = false;  ///< it has rung

    friend bool operator==(const HeldTimer&, const HeldTimer&) = default;
};
