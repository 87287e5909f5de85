#pragma once

#include <QByteArray>
#include <vips/vips8>

/// The first picture of the file, as it is stored: not yet upright, and decoded from top to bottom once while it is
/// read. What the file is, its first bytes say. Throws vips::VError when it is no readable file or none of the kinds
/// that we take.
vips::VImage openImage(const QByteArray& path);
