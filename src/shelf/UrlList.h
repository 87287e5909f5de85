#pragma once

#include <QByteArray>
#include <QList>
#include <QString>
#include <QUrl>

/// The URLs in a dropped form of type "text/uri-list" (one a line, comments between), "text/x-moz-url" or
/// "_NETSCAPE_URL" (one, with a title below it). Files of this machine come in the form of fileUrl(); what is no
/// absolute URL is left out. Of a list of absurd length only the end is read, since the shelf keeps the newest.
QList<QUrl> parseUrls(const QString& type, const QByteArray& bytes);
