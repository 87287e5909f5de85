#pragma once

#include <QByteArray>
#include <QImage>

// Small pictures from files that this desktop's own programs have made. Only away from the main thread.

constexpr qint64 kMaxPictureFile = 4 << 20;  // bytes

/// Null for what is not a PNG, is larger than kMaxPictureFile, or has more than 1024 pixels in a direction. Of
/// its texts it knows those that are not compressed.
QImage readPng(const QString& path);

/// Not larger than `pixels` in either direction, premultiplied.
QImage fitted(const QImage& image, int pixels);

/// The thumbnail that the desktop keeps of the file as it is now; null if there is none. At best `pixels` wide or high.
QImage thumbnailOf(const QByteArray& path, int pixels);
