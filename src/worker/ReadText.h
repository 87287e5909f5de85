#pragma once

#include <QString>
#include <vector>

#include "worker/Result.h"

enum class Document { image, pdf };

/// The text in the image that `source` reads, or on the first page of the PDF, recognised line by line in reading order
/// and joined with line feeds.
///
/// Failures: 1 the image cannot be opened, 4 the PDF cannot be opened or has no page, 5 no memory for the page's
/// picture, 6 the page cannot be rendered, 7 no text was found.
Result<QString> readText(int source, Document kind);

/// The folders and files, besides the system's libraries, that readText() has to open.
std::vector<const char*> foldersForReading();
