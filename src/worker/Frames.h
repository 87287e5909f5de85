#pragma once

#include <cstdint>
#include <vector>

#include "worker/FlatAreas.h"
#include "worker/GreyPicture.h"

/// Distinguishes text from the lines drawn around and between it: frames of buttons and fields, grids of tables, lines
/// between panels.
class Frames {
 public:
    /// `pieces` are the connected pieces of ink on `picture`, which is as large as what they were found on; both must
    /// outlive this. `isInk` is whether the area of that index is one of them.
    Frames(const FlatAreas& pieces, const GreyPicture& picture, const std::vector<int>& isInk);

    /// Whether piece `label` has four straight sides and is hollow, as a frame is, and a few letters are.
    [[nodiscard]] bool isHollow(uint32_t label) const;
    /// Whether it is a frame or an upright bar, where letters are `letterHeight` pixels tall.
    [[nodiscard]] bool isDrawn(uint32_t label, int letterHeight) const;

 private:
    [[nodiscard]] bool isAround(uint32_t label) const;

    const FlatAreas& pieces_;
    const GreyPicture& picture_;
    const std::vector<int>& isInk_;
};
