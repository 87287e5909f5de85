#pragma once

#include <QByteArray>
#include <QImage>

// Thumbnails and icons, which the desktop's own programs have written. Only away from the main thread.

constexpr qint64 kMaxPictureFile = 4 << 20;  // bytes

/// Null if the file is not a PNG, is larger than kMaxPictureFile, or has more than 1024 pixels in either direction.
/// Includes only uncompressed texts.
QImage readPng(const QString& path);

/// The image scaled down to at most `pixels` in either direction, premultiplied.
QImage fitted(const QImage& image, int pixels);

/// The desktop's thumbnail of the file, at most `pixels` wide and high; null if there is none or it is outdated.
QImage thumbnailOf(const QByteArray& path, int pixels);
