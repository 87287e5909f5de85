#pragma once

#include <vips/vips8>

#include "worker/Result.h"

/// The first page of the PDF that is open as `source`, on white, at two pixels per point. It is rendered on demand, so
/// reading its pixels can still throw vips::VError.
///
/// Failures: 4 it cannot be opened as a PDF, is locked or has no page, 5 the page is larger than any paper.
Result<vips::VImage> openPdfPage(int source);
