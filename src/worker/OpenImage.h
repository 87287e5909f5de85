#pragma once

#include <QByteArray>

#include "worker/VipsPointer.h"

/// The first picture of the file, as it is stored: not yet upright, and decoded from top to bottom once while it is
/// read. What the file is, its first bytes say. Null when it is no readable file or none of the kinds that we take.
VipsPointer openImage(const QByteArray& path);
