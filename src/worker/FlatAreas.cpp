#include "worker/FlatAreas.h"

#include <algorithm>
#include <cstdlib>
#include <numeric>

namespace {

/// Disjoint sets of pixels (union-find); each is represented by its first pixel.
class Sets {
 public:
    explicit Sets(size_t count) : parents_(count) { std::iota(parents_.begin(), parents_.end(), 0U); }

    uint32_t find(uint32_t member) {
        while (parents_[member] != member) member = parents_[member] = parents_[parents_[member]];
        return member;
    }
    void join(uint32_t one, uint32_t other) {
        one = find(one);
        other = find(other);
        parents_[std::max(one, other)] = std::min(one, other);
    }
    std::vector<uint32_t> take() { return std::move(parents_); }

 private:
    std::vector<uint32_t> parents_;
};

}  // namespace

FlatAreas findFlatAreas(const GreyPicture& picture, int tolerance) {
    Sets sets(picture.pixels.size());
    const auto alike = [&](size_t one, size_t other) {
        return std::abs(picture.pixels[one] - picture.pixels[other]) <= tolerance;
    };
    for (int y = 0; y < picture.height; ++y) {
        for (int x = 0; x < picture.width; ++x) {
            const size_t here = picture.at(x, y);
            const size_t above = here - size_t(picture.width);
            if (x > 0 && alike(here, here - 1)) sets.join(uint32_t(here), uint32_t(here - 1));
            if (y > 0 && alike(here, above)) sets.join(uint32_t(here), uint32_t(above));
        }
    }

    // A set's first pixel comes before the others, so its area exists when they are reached.
    FlatAreas result;
    result.labels = sets.take();
    for (int y = 0; y < picture.height; ++y) {
        for (int x = 0; x < picture.width; ++x) {
            uint32_t& label = result.labels[picture.at(x, y)];
            if (label == picture.at(x, y)) {
                label = uint32_t(result.areas.size());
                result.areas.push_back({x, y, x, y, 0});
            } else {
                // Its parent comes earlier as well, and already holds the index of the area.
                label = result.labels[label];
            }
            FlatAreas::Area& area = result.areas[label];
            area.left = std::min(area.left, x);
            area.right = std::max(area.right, x);
            area.bottom = y;
            ++area.pixels;
        }
    }
    return result;
}
