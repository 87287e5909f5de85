#pragma once

#include <QByteArray>
#include <QString>

#include "worker/Result.h"

/// The text in an image, or on the first page of a PDF, recognised line by line in reading order and joined with line
/// feeds. Which of the two the file is, its name's extension says. `path` is absolute and may hold any bytes.
///
/// Failures: 1 the image cannot be opened, 4 the PDF cannot be opened or has no page, 5 no memory for the page's
/// picture, 6 the page cannot be rendered, 7 no text was found.
Result<QString> readText(const QByteArray& path);
