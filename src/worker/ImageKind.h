#pragma once

#include <QByteArray>
#include <optional>

enum class ImageKind { png, jpeg, heif, tiff, webp, gif, bmp };

/// How many bytes from the start of a file imageKind() needs.
constexpr qsizetype kKindBytes = 64;

/// The format of a file that starts with these bytes; absent if it is none of these.
std::optional<ImageKind> imageKind(const QByteArray& start);
