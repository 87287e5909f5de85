#include "shelf/HeldJson.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <cmath>
#include <limits>

namespace {

const QString kLink = QStringLiteral("link");
const QString kNote = QStringLiteral("note");
const QString kPayload = QStringLiteral("_0");

const QString kId = QStringLiteral("id");
const QString kFireAt = QStringLiteral("fireAt");
const QString kMinutes = QStringLiteral("minutes");
const QString kDone = QStringLiteral("done");

QJsonObject encode(const Bite& bite) {
    const QString payload = bite.url() ? QString::fromUtf8(bite.url()->toEncoded()) : *bite.text();
    return {{bite.url() ? kLink : kNote, QJsonObject{{kPayload, payload}}}};
}

std::optional<Bite> decodeBite(const QJsonObject& object) {
    // Exactly one of the two keys; other keys are ignored.
    if (object.contains(kLink) == object.contains(kNote)) return {};
    const bool isLink = object.contains(kLink);
    const QJsonValue payload = object[isLink ? kLink : kNote][kPayload];
    if (!payload.isString()) return {};
    if (!isLink) return Bite::note(payload.toString());
    const QUrl url(payload.toString(), QUrl::StrictMode);
    if (!url.isValid()) return {};
    return Bite::link(url);
}

QJsonObject encode(const HeldTimer& timer) {
    return {{kId, timer.id.toString(QUuid::WithoutBraces).toUpper()},
            {kFireAt, timer.fireAt.seconds},
            {kMinutes, timer.minutes},
            {kDone, timer.done}};
}

std::optional<HeldTimer> decodeTimer(const QJsonObject& object) {
    const QString id = object[kId].toString();
    const QUuid uuid = QUuid::fromString(id);
    const QJsonValue fireAt = object[kFireAt];
    const double minutes = object[kMinutes].toDouble(std::numeric_limits<double>::quiet_NaN());
    const QJsonValue done = object[kDone];
    if (id.size() != 36 || uuid.isNull() || !fireAt.isDouble() || !done.isBool()) return {};
    if (minutes != std::floor(minutes) || std::abs(minutes) > std::numeric_limits<int>::max()) return {};
    return HeldTimer{uuid, {fireAt.toDouble()}, int(minutes), done.toBool()};
}

template <class T>
QByteArray encodeList(const QList<T>& values) {
    QJsonArray array;
    for (const T& value : values) array.append(encode(value));
    // The stored form escapes every slash; in JSON they occur only inside strings.
    return QJsonDocument(array).toJson(QJsonDocument::Compact).replace("/", "\\/");
}

template <class T>
std::optional<QList<T>> decodeList(const QByteArray& json, std::optional<T> (*decode)(const QJsonObject&)) {
    const QJsonDocument document = QJsonDocument::fromJson(json);
    if (!document.isArray()) return {};
    QList<T> values;
    for (const auto& element : document.array()) {
        if (!element.isObject()) return {};
        const std::optional<T> value = decode(element.toObject());
        if (!value) return {};
        values.append(*value);
    }
    return values;
}

}  // namespace

QByteArray encodeBites(const QList<Bite>& bites) {
    return encodeList(bites);
}

std::optional<QList<Bite>> decodeBites(const QByteArray& json) {
    return decodeList(json, decodeBite);
}

QByteArray encodeTimers(const QList<HeldTimer>& timers) {
    return encodeList(timers);
}

std::optional<QList<HeldTimer>> decodeTimers(const QByteArray& json) {
    return decodeList(json, decodeTimer);
}
