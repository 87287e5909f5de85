#pragma once

#include <QJsonObject>
#include <QString>
#include <optional>
#include <variant>

#include "shelf/Chewer.h"

// Checks of the worker's answers: the file that it decoded may have taken it over.

/// The error in the answer; absent if the job succeeded.
std::optional<ChewError> errorIn(const std::optional<QJsonObject>& answer);

/// The text in the answer to a "read" request: not empty, not longer than any page, and without control characters
/// other than line feeds and tabs.
std::variant<QString, ChewError> textIn(const std::optional<QJsonObject>& answer);

/// Whether a file begins and ends like a complete one of the format that `mode` produces, and is no larger than the
/// worker may write. It is not decoded: untrusted files must not be decoded in this process.
bool isComplete(int descriptor, Chewer::Mode mode);
