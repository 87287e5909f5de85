#pragma once

#include <QByteArray>
#include <QList>
#include <optional>

#include "creature/Bite.h"
#include "creature/HeldTimer.h"

// The stored form of what is held: compact UTF-8 JSON. Lists in which any element is malformed are absent as a whole.

QByteArray encodeBites(const QList<Bite>& bites);
std::optional<QList<Bite>> decodeBites(const QByteArray& json);

QByteArray encodeTimers(const QList<HeldTimer>& timers);
std::optional<QList<HeldTimer>> decodeTimers(const QByteArray& json);
