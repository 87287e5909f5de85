#pragma once

#include <QString>
#include <vector>

#include "worker/Result.h"

enum class Document { image, pdf };

/// The text in the image that is open as `source`, or on the first page of the PDF: its lines in reading order, joined
/// with line feeds.
///
/// Failures: 0 no language is installed, 1 the image cannot be opened, 4 the PDF cannot be opened or has no page, 5 the
/// page is too large, 6 the page cannot be rendered, 7 no text was found.
Result<QString> readText(int source, Document kind);

/// The folders and files, besides the system's libraries, that readText() has to open.
std::vector<const char*> foldersForReading();
