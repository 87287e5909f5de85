#pragma once

#include <QByteArray>
#include <QStringList>
#include <optional>

#include "worker/GreyPicture.h"

/// The ideal height of letters in pixels, between that of a small letter and a capital. Smaller and larger ones are
/// recognised less well, or more slowly.
constexpr int kReadingHeight = 22;

/// The lines of dark text in a light picture, in reading order, column by column. The picture may be rotated by
/// multiples of 90 degrees. Letters should be kReadingHeight tall. What is probably an icon or a photograph is left
/// out. Absent if none of the languages is installed.
std::optional<QStringList> recognise(const GreyPicture& picture, const QByteArray& languages);
