#pragma once

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QList>
#include <optional>

/// The stored form of a list: compact UTF-8 JSON in which every slash is escaped.
template <class T, class Encode>
QByteArray encodeArray(const QList<T>& values, const Encode& encode) {
    QJsonArray array;
    for (const T& value : values) array.append(encode(value));
    // Slashes occur only inside strings.
    return QJsonDocument(array).toJson(QJsonDocument::Compact).replace("/", "\\/");
}

/// Reads what encodeArray wrote; absent when it is no array of objects, or `decode` refuses one of them.
template <class T, class Decode>
std::optional<QList<T>> decodeArray(const QByteArray& json, const Decode& decode) {
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
