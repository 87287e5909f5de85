#include "worker/Ink.h"

#include <algorithm>
#include <array>
#include <cstdlib>
#include <utility>

#include "worker/FlatAreas.h"
#include "worker/Frames.h"

namespace {

// Differences in brightness, of 255. Gradients and compression noise stay below the first, the palest text above the
// second.
constexpr int kSmoothStep = 3;
constexpr int kMinInk = 28;

/// Text is written on surfaces: the page, a panel, a button, a selected row. What is not a surface is ink.
class Surfaces {
 public:
    Surfaces(const GreyPicture& picture, const FlatAreas& flat) : picture_(picture), flat_(flat) {
        for (const FlatAreas::Area& area : flat.areas) {
            const auto label = uint32_t(surface_.size());
            surface_.push_back(isBackdrop(area) || isPlate(label, area));
        }
    }

    [[nodiscard]] bool contains(size_t pixel) const { return surface_[flat_.labels[pixel]]; }

 private:
    /// Too large for a letter, or large and cut off by the edge of the picture.
    [[nodiscard]] bool isBackdrop(const FlatAreas::Area& area) const {
        const double share = double(area.pixels) / double(picture_.pixels.size());
        const bool runsOff =
            area.left == 0 || area.top == 0 || area.right == picture_.width - 1 || area.bottom == picture_.height - 1;
        return share > 0.2 || (share > 0.01 && runsOff);
    }

    /// Rectangular, possibly with round corners, and large enough to write on. No letter fills the sides and corners of
    /// its box like this, even slightly inset, except "l" and "I", which have nothing written on them.
    [[nodiscard]] bool isPlate(uint32_t label, const FlatAreas::Area& area) const {
        if (area.width() < area.height() / 2) {
            const bool isWrittenOn = area.pixels < 0.95 * area.width() * area.height();
            if (area.height() < 24 || area.width() < 12 || !isWrittenOn) return false;
        } else if (area.width() < 24 || area.height() < 12) {
            return false;
        }
        const int inside = std::min(area.width(), area.height()) / 8;
        const int left = area.left + inside;
        const int right = area.right - inside;
        const int top = area.top + inside;
        const int bottom = area.bottom - inside;
        const auto has = [&](int x, int y) { return flat_.labels[picture_.at(x, y)] == label; };
        if (!has(left, top) || !has(right, top) || !has(left, bottom) || !has(right, bottom)) return false;
        int above = 0;
        int below = 0;
        for (int x = area.left; x <= area.right; ++x) {
            above += has(x, top);
            below += has(x, bottom);
        }
        int before = 0;
        int after = 0;
        for (int y = area.top; y <= area.bottom; ++y) {
            before += has(left, y);
            after += has(right, y);
        }
        return std::min(above, below) > 0.7 * area.width() && std::min(before, after) > 0.6 * area.height();
    }

    const GreyPicture& picture_;
    const FlatAreas& flat_;
    std::vector<bool> surface_;
};

/// Whether the pixel is on the border of two surfaces: within two pixels there is a brighter and a darker one.
bool isSeam(const GreyPicture& picture, const Surfaces& surfaces, int x, int y) {
    constexpr int kReach = 2;
    const int value = picture.pixels[picture.at(x, y)];
    bool brighter = false;
    bool darker = false;
    for (int ny = std::max(0, y - kReach); ny <= std::min(picture.height - 1, y + kReach); ++ny) {
        for (int nx = std::max(0, x - kReach); nx <= std::min(picture.width - 1, x + kReach); ++nx) {
            const size_t there = picture.at(nx, ny);
            if (!surfaces.contains(there)) continue;
            brighter |= picture.pixels[there] > value;
            darker |= picture.pixels[there] < value;
        }
    }
    return brighter && darker;
}

/// For each pixel, the difference from the value of the nearest surface: 0 on the surface itself.
std::vector<uint8_t> contrasts(const GreyPicture& picture, const Surfaces& surfaces) {
    struct Nearest {
        int distance;
        uint8_t value;
    };
    std::vector<Nearest> nearest(picture.pixels.size(), {1 << 28, 0});
    for (size_t i = 0; i < nearest.size(); ++i) {
        if (surfaces.contains(i)) nearest[i] = {0, picture.pixels[i]};
    }
    // Two passes of a chamfer distance transform, with weights 3 (straight) and 4 (diagonal).
    const auto sweep = [&](int from, int to, int step) {
        for (int row = from; row != to; row += step) {
            for (int i = 0; i < picture.width; ++i) {
                const int x = step > 0 ? i : picture.width - 1 - i;
                Nearest& here = nearest[picture.at(x, row)];
                const auto relax = [&](int dx, int dy, int cost) {
                    const int nx = x + dx;
                    const int ny = row + dy;
                    if (nx < 0 || ny < 0 || nx >= picture.width || ny >= picture.height) return;
                    const Nearest& there = nearest[picture.at(nx, ny)];
                    if (there.distance + cost < here.distance) here = {there.distance + cost, there.value};
                };
                relax(-step, 0, 3);
                relax(-1, -step, 4);
                relax(0, -step, 3);
                relax(1, -step, 4);
            }
        }
    };
    sweep(0, picture.height, 1);
    sweep(picture.height - 1, -1, -1);

    std::vector<uint8_t> result(nearest.size());
    for (int y = 0; y < picture.height; ++y) {
        for (int x = 0; x < picture.width; ++x) {
            const size_t i = picture.at(x, y);
            if (nearest[i].distance == 0 || isSeam(picture, surfaces, x, y)) continue;
            result[i] = uint8_t(std::abs(picture.pixels[i] - nearest[i].value));
        }
    }
    return result;
}

/// The strongest contrast around each position, in its tile and the neighbouring ones.
class Neighbourhoods {
 public:
    explicit Neighbourhoods(const GreyPicture& contrast)
        : columns_(contrast.width / kTile + 1),
          rows_(contrast.height / kTile + 1),
          strongest_(size_t(columns_) * size_t(rows_)) {
        for (int y = 0; y < contrast.height; ++y) {
            for (int x = 0; x < contrast.width; ++x) {
                uint8_t& most = strongest_[size_t(y / kTile * columns_ + x / kTile)];
                most = std::max(most, contrast.pixels[contrast.at(x, y)]);
            }
        }
    }

    [[nodiscard]] int strongestNear(int x, int y) const {
        int most = 0;
        for (int row = std::max(0, y / kTile - 1); row <= std::min(rows_ - 1, y / kTile + 1); ++row) {
            for (int column = std::max(0, x / kTile - 1); column <= std::min(columns_ - 1, x / kTile + 1); ++column) {
                most = std::max<int>(most, strongest_[size_t(row * columns_ + column)]);
            }
        }
        return most;
    }

 private:
    static constexpr int kTile = 16;
    int columns_;
    int rows_;
    std::vector<uint8_t> strongest_;
};

/// The median and the lowest decile of the pieces' heights.
struct Heights {
    int median = 0;
    int low = 0;
};

/// Pieces are weighted by their width; dots and rules are ignored.
template <typename IsLetter>
Heights letterHeights(const FlatAreas& pieces, IsLetter isLetter) {
    std::vector<std::pair<int, long>> widths;
    long all = 0;
    for (size_t i = 0; i < pieces.areas.size(); ++i) {
        const FlatAreas::Area& piece = pieces.areas[i];
        if (piece.height() < 4 || piece.width() > 20 * piece.height() || !isLetter(uint32_t(i))) continue;
        widths.emplace_back(piece.height(), piece.width());
        all += piece.width();
    }
    std::sort(widths.begin(), widths.end());
    Heights heights;
    long below = 0;
    for (const auto& [height, width] : widths) {
        below += width;
        if (heights.low == 0 && 10 * below >= all) heights.low = height;
        if (heights.median == 0 && 2 * below >= all) heights.median = height;
    }
    return heights;
}

/// Sets the contrast of pieces that are frames rather than letters to 0, and returns the heights of the letters.
/// `strongest` holds the strongest contrast of each piece.
Heights dropFrames(const FlatAreas& pieces, const GreyPicture& picture, std::vector<int>& strongest) {
    const std::vector<int> ink = strongest;
    const Frames frames(pieces, picture, ink);
    const auto isInk = [&](uint32_t i) { return strongest[i] != 0; };
    Heights heights = letterHeights(pieces, [&](uint32_t i) { return isInk(i) && !frames.isHollow(i); });
    if (heights.median == 0) return letterHeights(pieces, isInk);
    for (uint32_t i = 0; i < pieces.areas.size(); ++i) {
        if (isInk(i) && frames.isDrawn(i, heights.median)) strongest[i] = 0;
    }
    return letterHeights(pieces, isInk);
}

/// Brings each connected piece of ink to full contrast, drops pieces that are too faint, and measures the letters.
/// Faint pixels near strong ink are compression noise, which must not connect letters either.
Ink develop(const GreyPicture& contrast) {
    const Neighbourhoods neighbourhoods(contrast);
    GreyPicture mask = contrast;
    for (int y = 0; y < mask.height; ++y) {
        for (int x = 0; x < mask.width; ++x) {
            uint8_t& value = mask.pixels[mask.at(x, y)];
            value = value > std::max(kSmoothStep, neighbourhoods.strongestNear(x, y) / 8) ? 255 : 0;
        }
    }
    const FlatAreas pieces = findFlatAreas(mask, 0);
    std::vector<int> strongest(pieces.areas.size());
    for (size_t i = 0; i < contrast.pixels.size(); ++i) {
        int& most = strongest[pieces.labels[i]];
        if (mask.pixels[i] != 0) most = std::max<int>(most, contrast.pixels[i]);
    }
    for (size_t i = 0; i < pieces.areas.size(); ++i) {
        const FlatAreas::Area& piece = pieces.areas[i];
        const int near = neighbourhoods.strongestNear((piece.left + piece.right) / 2, (piece.top + piece.bottom) / 2);
        const bool isInk = strongest[i] >= std::max(kMinInk, near / 5);
        strongest[i] = isInk ? std::max(strongest[i], near / 2) : 0;
    }
    const Heights heights = dropFrames(pieces, contrast, strongest);
    Ink ink{contrast, heights.median, heights.low};
    for (size_t i = 0; i < contrast.pixels.size(); ++i) {
        const int most = strongest[pieces.labels[i]];
        ink.picture.pixels[i] = most == 0 ? 255 : uint8_t(255 - 255 * contrast.pixels[i] / most);
    }
    return ink;
}

/// The median of a histogram.
int median(const std::array<size_t, 256>& counts) {
    size_t all = 0;
    for (const size_t count : counts) all += count;
    size_t below = 0;
    int value = 0;
    while (value < 255 && (below += counts[size_t(value)]) * 2 < all) ++value;
    return value;
}

/// Whether even neighbouring pixels of a surface differ, as in photographs and scans.
bool isGrainy(const GreyPicture& picture) {
    std::array<size_t, 256> steps{};
    for (size_t i = 1; i < picture.pixels.size(); ++i) {
        ++steps[size_t(std::abs(picture.pixels[i] - picture.pixels[i - 1]))];
    }
    return median(steps) > kSmoothStep;
}

Ink asDarkOnLight(const GreyPicture& picture) {
    std::array<size_t, 256> values{};
    for (const uint8_t value : picture.pixels) ++values[value];
    // Cameras give more pixels than letters need, so a small picture is probably a detail of one.
    const int height = picture.pixels.size() < 1'500'000 ? 12 : 24;
    Ink ink{picture, height, height};
    if (median(values) < 128) {
        for (uint8_t& value : ink.picture.pixels) value = uint8_t(255 - value);
    }
    return ink;
}

}  // namespace

Ink findInk(const GreyPicture& picture) {
    if (isGrainy(picture)) return asDarkOnLight(picture);
    const FlatAreas flat = findFlatAreas(picture, kSmoothStep);
    const Surfaces surfaces(picture, flat);
    return develop({picture.width, picture.height, contrasts(picture, surfaces)});
}
