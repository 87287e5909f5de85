#pragma once

#include <QByteArray>
#include <QStringList>

/// The names that recognition knows the languages by, joined as it wants them, the one to try first in front: the first
/// two of the given ones, such as "de-AT" or "zh-Hant", and English. Which of them are installed is not looked at.
QByteArray recognitionLanguages(const QStringList& spoken);
