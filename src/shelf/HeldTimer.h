#pragma once

#include <QByteArray>
#include <QList>
#include <QUuid>
#include <optional>

#include "platform/Clock.h"

/// A countdown in the creature's mouth.
struct HeldTimer {
    QUuid id;
    Date fireAt;        ///< when the countdown ends
    int minutes = 1;    ///< the length asked for, at least 1
    bool done = false;  ///< it has rung

    friend bool operator==(const HeldTimer&, const HeldTimer&) = default;
};

/// UTF-8 JSON, as stored in the preferences.
QByteArray encodeTimers(const QList<HeldTimer>& timers);
/// Absent when any element is malformed.
std::optional<QList<HeldTimer>> decodeTimers(const QByteArray& json);
