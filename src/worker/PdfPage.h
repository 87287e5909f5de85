#pragma once

#include <vips/vips8>

#include "worker/Result.h"

/// The first page of the PDF that `source` reads, on white, two pixels a point. It is rendered while it is read, so
/// that reading can still throw vips::VError.
///
/// Failures: 4 it cannot be opened as a PDF, is locked or has no page, 5 the page is larger than any paper.
Result<vips::VImage> openPdfPage(int source);
