#pragma once

#include <QByteArray>
#include <QList>
#include <QString>
#include <QUrl>

#include "shelf/DataUrl.h"

/// What a dropped list of addresses leads to.
struct UrlList {
    QList<QUrl> files;  ///< of this machine, in the form of fileUrl()
    QList<QUrl> links;
    std::optional<DataImage> image;  ///< where the first address is one itself

    bool isEmpty() const { return files.isEmpty() && links.isEmpty() && !image; }
};

/// Reads a dropped form of type "text/uri-list" (one address a line, comments between), "text/x-moz-url" or
/// "_NETSCAPE_URL" (one, with a title below it). What is no absolute URL is left out, as is an address of more than
/// 8 KiB or a path that no file can have. Of a list of absurd length only the end is read, since the shelf keeps the
/// newest. A large one takes long, so this is called away from the main thread.
UrlList parseUrls(const QString& type, const QByteArray& bytes);
