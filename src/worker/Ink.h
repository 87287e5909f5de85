#pragma once

#include "worker/GreyPicture.h"

/// What is written on a picture: black on white wherever it was written, at full contrast, whatever the colours of the
/// text and of what is behind it, without what is behind it and without the frames around it.
struct Ink {
    GreyPicture picture;
    /// What the letters' bodies measure, in pixels, between a small letter and a capital; 0 when there is no ink.
    int letterHeight = 0;
    /// The same of the smallest tenth.
    int smallLetterHeight = 0;
};

/// Separates the ink of a picture drawn by a computer, where text stands on plain or smoothly changing surfaces.
/// A photograph or a scan has few of these: it stays as it is, but is turned into its negative if it is mostly dark.
Ink findInk(const GreyPicture& picture);
