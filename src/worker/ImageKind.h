#pragma once

#include <QByteArray>
#include <optional>

enum class ImageKind { png, jpeg, heif, tiff, webp, gif, bmp };

/// As many bytes from a file's start as its kind can be told by.
constexpr qsizetype kKindBytes = 64;

/// What the file is that starts with these bytes; absent when it is none of these.
std::optional<ImageKind> imageKind(const QByteArray& start);
