#pragma once

#include <QByteArray>
#include <QString>
#include <optional>

/// An image embedded in a data: URL.
struct DataImage {
    QString extension;  ///< of a file with these bytes, without a dot
    QByteArray bytes;
};

/// Whether `address` has the scheme "data:".
bool isDataUrl(const QByteArray& address);
/// The image embedded in a data: URL; absent if `address` is anything else, or damaged.
std::optional<DataImage> imageInDataUrl(const QByteArray& address);
