#pragma once

#include <QByteArray>
#include <QList>
#include <optional>

#include "creature/Bite.h"
#include "creature/HeldTimer.h"

// The stored form of bites and timers: compact UTF-8 JSON. A list with a malformed element is absent as a whole.

QByteArray encodeBites(const QList<Bite>& bites);
std::optional<QList<Bite>> decodeBites(const QByteArray& json);

QByteArray encodeTimers(const QList<HeldTimer>& timers);
std::optional<QList<HeldTimer>> decodeTimers(const QByteArray& json);
