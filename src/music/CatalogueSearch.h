#pragma once

#include <QByteArray>
#include <QList>
#include <QString>
#include <QUrl>

// The public music catalogue's search: what to ask it for a track, and what its answer says.

/// `text` in lower case and without accents; only its letters and digits.
QString normalizeForMatch(const QString& text);

/// The words to search for: `track` without what video titles add.
QString searchTerm(const QString& track);
/// The request at `host`, an address such as "https://a.example"; invalid if that is not one.
QUrl searchRequest(const QString& host, const QString& term);
/// The addresses of the covers of the plausible results, in the catalogue's order; empty for an answer of another form.
QList<QUrl> coversIn(const QByteArray& answer, const QString& term);
