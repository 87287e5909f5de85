#include "music/CatalogueSearch.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

using namespace Qt::StringLiterals;

namespace {

constexpr qsizetype kMaxTerm = 300;  // characters
constexpr int kMaxResults = 3;

bool isPlausible(const QString& term, const QString& name, const QString& artist) {
    if (name.isEmpty() || term.isEmpty()) return false;
    return term.contains(name) || name.contains(term) || (!artist.isEmpty() && term.contains(artist));
}

}  // namespace

QString normalizeForMatch(const QString& text) {
    // Decomposed, accents are characters of their own, neither letters nor digits.
    auto characters = text.toLower().normalized(QString::NormalizationForm_D).toUcs4();
    characters.removeIf([](uint c) { return !QChar::isLetterOrNumber(c); });
    return QString::fromUcs4(reinterpret_cast<const char32_t*>(characters.constData()), characters.size());
}

QString searchTerm(const QString& track) {
    QString term = track.left(kMaxTerm);
    for (const QString& extra :
         {u" (Official Video)"_s, u" (Official Audio)"_s, u" (Lyrics)"_s, u" [Official Video]"_s})
        term.remove(extra);
    return term;
}

QUrl searchRequest(const QString& host, const QString& term) {
    QUrl request(host);
    if (request.host().isEmpty()) return {};
    request.setPath(u"/search"_s);
    // A plus sign would be read as a blank.
    request.setQuery(QString::fromLatin1("term=" + QUrl::toPercentEncoding(term) +
                                         "&entity=song&limit=" + QByteArray::number(kMaxResults)));
    return request;
}

QList<QUrl> coversIn(const QByteArray& answer, const QString& term) {
    const QString wanted = normalizeForMatch(term);
    QList<QUrl> covers;
    for (const QJsonValue& value : QJsonDocument::fromJson(answer).object()[u"results"_s].toArray()) {
        const QJsonObject result = value.toObject();
        const QString name = normalizeForMatch(result[u"trackName"_s].toString());
        if (!isPlausible(wanted, name, normalizeForMatch(result[u"artistName"_s].toString()))) continue;
        QString address = result[u"artworkUrl100"_s].toString();
        const QUrl cover(address.replace(u"100x100bb"_s, u"300x300bb"_s));
        if (!cover.host().isEmpty() && covers.size() < kMaxResults) covers.append(cover);
    }
    return covers;
}
