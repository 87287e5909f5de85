#pragma once

#include <QByteArray>
#include <QString>
#include <optional>

/// An image that is its own address.
struct DataImage {
    QString extension;  ///< of a file with these bytes, without a dot
    QByteArray bytes;
};

/// Whether `address` carries what it is the address of, and so leads nowhere.
bool isDataUrl(const QByteArray& address);
/// The image that such an address carries; absent when it is anything else, or damaged.
std::optional<DataImage> imageInDataUrl(const QByteArray& address);
