#pragma once

#include <QImage>
#include <QJsonObject>
#include <QString>
#include <optional>
#include <variant>

#include "shelf/Chewer.h"

// What is believed of the worker, which may have been taken over by the file that it decoded.

/// The error that the answer tells; absent for a job that was done.
std::optional<ChewError> errorIn(const std::optional<QJsonObject>& answer);

/// The text in the answer to reading: neither empty nor longer than any page, and without control characters but line
/// feeds and tabs.
std::variant<QString, ChewError> textIn(const std::optional<QJsonObject>& answer);

/// The picture in the answer to a thumbnail of this side, to be painted: its size is within the square, and it has just
/// as many pixels as that takes.
std::variant<QImage, ChewError> thumbnailIn(const std::optional<QJsonObject>& answer, int side);

/// Whether a file begins and ends like a whole one of the kind that this mode makes, and is no larger than the worker
/// may write. Its decoder is not asked: that is what must not happen here.
bool isWhole(int descriptor, Chewer::Mode mode);
