#pragma once

/// Ids of the pieces in a DisplayList, one for each thing on the panel.
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
    pillLabels,  ///< two: the current one and the previous one
    whisper = pillLabels + 2,
    albumArt,
    musicTrack,
    musicButtons,  ///< three
    confetti = musicButtons + 3,
    chips  ///< from here on, two for each chip
};
}
