#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

/// An upright picture without colour, in rows from the top, 0 black to 255 white.
struct GreyPicture {
    int width = 0;
    int height = 0;
    std::vector<uint8_t> pixels;

    [[nodiscard]] size_t at(int x, int y) const { return size_t(y) * size_t(width) + size_t(x); }
};
