#pragma once

#include <QByteArray>
#include <QStringList>
#include <optional>

#include "worker/GreyPicture.h"

/// What letters should measure, in pixels, between a small letter and a capital. Both smaller and larger ones are read
/// less well, or more slowly.
constexpr int kReadingHeight = 22;

/// The lines of dark text on a light picture, in reading order: a column is read to its end before the next. The
/// picture may lie on a side or on its head. Letters should be kReadingHeight tall. What is more likely an icon or a
/// photograph than text is left out. Absent when none of the languages is installed.
std::optional<QStringList> recognise(const GreyPicture& picture, const QByteArray& languages);
