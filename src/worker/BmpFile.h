#pragma once

#include <QSize>
#include <optional>
#include <vips/vips8>

/// The size in pixels of the BMP file that `descriptor` reads; absent when its header is broken, or when the file is
/// shorter than its header says.
std::optional<QSize> bmpSize(int descriptor);

/// Decodes all of it. Throws vips::VError when that fails.
vips::VImage decodeBmp(int descriptor);
