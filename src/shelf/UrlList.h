#pragma once

#include <QByteArray>
#include <QList>
#include <QString>
#include <QUrl>

#include "platform/DataUrl.h"

/// The contents of a dropped list of addresses.
struct UrlList {
    QList<QUrl> files;  ///< on this machine, in the form of fileUrl()
    QList<QUrl> links;
    std::optional<DataImage> image;  ///< if the first address is a data: URL

    bool isEmpty() const { return files.isEmpty() && links.isEmpty() && !image; }
};

/// Parses a dropped form of type "text/uri-list" (one address per line, with comments), "text/x-moz-url" or
/// "_NETSCAPE_URL" (one address, then a title). What is not an absolute URL is left out, as are addresses over 8 KiB
/// and impossible paths. Only the end of an absurdly long list is read, since the shelf holds the newest. Slow for
/// large lists: call away from the main thread for those.
UrlList parseUrls(const QString& type, const QByteArray& bytes);
