#include "worker/Frames.h"

#include <algorithm>

namespace {

constexpr int smallest = 12;  // pixels each way

}  // namespace

Frames::Frames(const FlatAreas& pieces, const GreyPicture& picture, const std::vector<int>& isInk)
    : pieces_(pieces), picture_(picture), isInk_(isInk) {}

bool Frames::isHollow(uint32_t label) const {
    const FlatAreas::Area& piece = pieces_.areas[label];
    const int width = piece.width();
    const int height = piece.height();
    if (width < smallest || height < smallest || 2L * piece.pixels > long(width) * height) return false;
    // A side may be a little uneven where it was smoothed.
    const int depth = std::max(2, std::min(width, height) / 12);
    const auto has = [&](int x, int y) { return pieces_.labels[picture_.at(x, y)] == label; };
    int above = 0;
    int below = 0;
    for (int x = piece.left; x <= piece.right; ++x) {
        bool top = false;
        bool bottom = false;
        for (int i = 0; i < depth; ++i) {
            top |= has(x, piece.top + i);
            bottom |= has(x, piece.bottom - i);
        }
        above += top;
        below += bottom;
    }
    int before = 0;
    int after = 0;
    for (int y = piece.top; y <= piece.bottom; ++y) {
        bool left = false;
        bool right = false;
        for (int i = 0; i < depth; ++i) {
            left |= has(piece.left + i, y);
            right |= has(piece.right - i, y);
        }
        before += left;
        after += right;
    }
    // The ends of a button may be half circles.
    return std::min(above, below) > 0.7 * width && std::min(before, after) > 0.4 * height;
}

/// Whether other ink lies inside.
bool Frames::isAround(uint32_t label) const {
    const FlatAreas::Area& piece = pieces_.areas[label];
    for (const int quarter : {1, 2, 3}) {
        const int y = piece.top + piece.height() * quarter / 4;
        for (int x = piece.left; x <= piece.right; ++x) {
            const uint32_t there = pieces_.labels[picture_.at(x, y)];
            if (there == label || isInk_[there] == 0) continue;
            const FlatAreas::Area& other = pieces_.areas[there];
            if (other.top > piece.top && other.bottom < piece.bottom) return true;
        }
    }
    return false;
}

bool Frames::isDrawn(uint32_t label, int letterHeight) const {
    const FlatAreas::Area& piece = pieces_.areas[label];
    const int width = piece.width();
    const int height = piece.height();
    if (8 * width <= height) return height > 3 * letterHeight;
    if (height <= 1.5 * letterHeight && 2 * width <= 5 * height) return false;
    // As wide a line as makes the piece's pixels all around it.
    const bool isThin = 16L * piece.pixels < 2L * (width + height) * height;
    return isHollow(label) && (isThin || isAround(label));
}
