#pragma once

#include <cstdint>
#include <vector>

#include "worker/GreyPicture.h"

/// Which pixels of a picture are connected to one another without a visible step in brightness.
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

/// Neighbours in a row or a column belong together when their values differ by `tolerance` at most.
FlatAreas findFlatAreas(const GreyPicture& picture, int tolerance);
