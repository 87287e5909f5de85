#pragma once

/// Names of the pieces of a DisplayList, one for each thing on the panel.
namespace piece {
enum : int {
    body,
    chevron,
    cheeks,
    leftEye,
    rightEye,
    mouth,
    sleepingArcs,
    zzz,
    badge,
    glyph,
    pill,
    pillLabels,  ///< two: the present one and the one before it
    whisper = pillLabels + 2,
    confetti,
    chips  ///< this and all above: two for each chip
};
}
