#include "worker/Frames.h"

#include <algorithm>

namespace {

constexpr int kMinSide = 12;  // pixels

/// At how many positions along a side, from `first` to `last`, the piece has a pixel within `depth` of the edge.
template <class Has>
int covered(int first, int last, int depth, Has has) {
    int places = 0;
    for (int place = first; place <= last; ++place) {
        int in = 0;
        while (in < depth && !has(place, in)) ++in;
        places += in < depth;
    }
    return places;
}

}  // namespace

Frames::Frames(const FlatAreas& pieces, const GreyPicture& picture, const std::vector<int>& isInk)
    : pieces_(pieces), picture_(picture), isInk_(isInk) {}

bool Frames::isHollow(uint32_t label) const {
    const FlatAreas::Area& piece = pieces_.areas[label];
    const int width = piece.width();
    const int height = piece.height();
    if (width < kMinSide || height < kMinSide || 2L * piece.pixels > long(width) * height) return false;
    // A side may be a little uneven where it was smoothed.
    const int depth = std::max(2, std::min(width, height) / 12);
    const auto has = [&](int x, int y) { return pieces_.labels[picture_.at(x, y)] == label; };
    const auto row = [&](int y, int step) {
        return covered(piece.left, piece.right, depth, [&](int x, int in) { return has(x, y + step * in); });
    };
    const auto column = [&](int x, int step) {
        return covered(piece.top, piece.bottom, depth, [&](int y, int in) { return has(x + step * in, y); });
    };
    // The ends of a button may be half circles.
    return std::min(row(piece.top, 1), row(piece.bottom, -1)) > 0.7 * width &&
           std::min(column(piece.left, 1), column(piece.right, -1)) > 0.4 * height;
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
    // Compares the average line width, pixels divided by perimeter, with the height.
    const bool isThin = 16L * piece.pixels < 2L * (width + height) * height;
    return isHollow(label) && (isThin || isAround(label));
}
