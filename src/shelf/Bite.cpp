#include "shelf/Bite.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include "shelf/Json.h"

namespace {

const QString kLink = QStringLiteral("link");
const QString kNote = QStringLiteral("note");
const QString kPayload = QStringLiteral("_0");

QString absoluteString(const QUrl& url) {
    return QString::fromUtf8(url.toEncoded());
}

QJsonObject encode(const Bite& bite) {
    const QString payload = bite.url() ? absoluteString(*bite.url()) : *bite.text();
    return {{bite.url() ? kLink : kNote, QJsonObject{{kPayload, payload}}}};
}

std::optional<Bite> decode(const QJsonObject& object) {
    // Exactly one of the two names; others are none of our business.
    if (object.contains(kLink) == object.contains(kNote)) return {};
    const bool link = object.contains(kLink);
    const QJsonValue payload = object[link ? kLink : kNote][kPayload];
    if (!payload.isString()) return {};
    if (!link) return Bite::note(payload.toString());
    const QUrl url(payload.toString(), QUrl::StrictMode);
    if (!url.isValid()) return {};
    return Bite::link(url);
}

}  // namespace

QString biteKey(const Bite& bite) {
    return bite.url() ? QStringLiteral("l:") + absoluteString(*bite.url()) : QStringLiteral("n:") + *bite.text();
}

QByteArray encodeBites(const QList<Bite>& bites) {
    return encodeArray(bites, encode);
}

std::optional<QList<Bite>> decodeBites(const QByteArray& json) {
    return decodeArray<Bite>(json, decode);
}
