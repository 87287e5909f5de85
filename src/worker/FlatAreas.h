#pragma once

#include <cstdint>
#include <vector>

#include "worker/GreyPicture.h"

/// The connected areas of a picture without visible steps in brightness.
struct FlatAreas {
    struct Area {
        int left, top, right, bottom;  ///< The outermost pixels.
        int pixels;

        [[nodiscard]] int width() const { return right - left + 1; }
        [[nodiscard]] int height() const { return bottom - top + 1; }
    };

    std::vector<uint32_t> labels;  ///< For each pixel of the picture, its area's index.
    std::vector<Area> areas;
};

/// Horizontal and vertical neighbours belong together if their values differ by `tolerance` at most.
FlatAreas findFlatAreas(const GreyPicture& picture, int tolerance);
