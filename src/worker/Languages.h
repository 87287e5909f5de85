#pragma once

#include <QByteArray>
#include <QStringList>

/// Tesseract's names, joined with "+", for the first two of the user's languages (such as "de-AT" or "zh-Hant"),
/// followed by English. Does not check which of them are installed.
QByteArray recognitionLanguages(const QStringList& spoken);
