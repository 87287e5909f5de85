#pragma once

#include <QSize>
#include <optional>
#include <vips/vips8>

/// The size in pixels of the BMP file that is open as `descriptor`; absent if its header is malformed or the file is
/// shorter than its header says.
std::optional<QSize> bmpSize(int descriptor);

/// Decodes the whole file. Throws vips::VError on failure.
vips::VImage decodeBmp(int descriptor);
