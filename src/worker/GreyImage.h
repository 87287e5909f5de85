#pragma once

#include <optional>

#include "worker/GreyPicture.h"
#include "worker/VipsPointer.h"

/// The image upright and without colour. What is transparent becomes white, or black where the rest is bright; an image
/// that has more pixels than any screen is made smaller. Absent when the image cannot be decoded to its end.
std::optional<GreyPicture> greyPicture(VipsPointer image);
