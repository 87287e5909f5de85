#include "shelf/HeldTimer.h"

#include <cmath>
#include <limits>

#include "shelf/Json.h"

namespace {

const QString kId = QStringLiteral("id");
const QString kFireAt = QStringLiteral("fireAt");
const QString kMinutes = QStringLiteral("minutes");
const QString kDone = QStringLiteral("done");

QJsonObject encode(const HeldTimer& timer) {
    return {{kId, timer.id.toString(QUuid::WithoutBraces).toUpper()},
            {kFireAt, timer.fireAt.seconds},
            {kMinutes, timer.minutes},
            {kDone, timer.done}};
}

std::optional<HeldTimer> decode(const QJsonObject& object) {
    const QString id = object[kId].toString();
    const QUuid uuid = QUuid::fromString(id);
    const QJsonValue fireAt = object[kFireAt];
    const double minutes = object[kMinutes].toDouble(std::numeric_limits<double>::quiet_NaN());
    const QJsonValue done = object[kDone];
    if (id.size() != 36 || uuid.isNull() || !fireAt.isDouble() || !done.isBool()) return {};
    if (minutes != std::floor(minutes) || std::abs(minutes) > std::numeric_limits<int>::max()) return {};
    return HeldTimer{uuid, {fireAt.toDouble()}, int(minutes), done.toBool()};
}

}  // namespace

QByteArray encodeTimers(const QList<HeldTimer>& timers) {
    return encodeArray(timers, encode);
}

std::optional<QList<HeldTimer>> decodeTimers(const QByteArray& json) {
    return decodeArray<HeldTimer>(json, decode);
}
