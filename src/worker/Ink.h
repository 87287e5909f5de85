#pragma once

#include "worker/GreyPicture.h"

/// The text of a picture: black on white at full contrast, whatever the colours of the text and its background, without
/// the background and without frames.
struct Ink {
    GreyPicture picture;
    /// The median height of letters in pixels, between that of a small letter and a capital; 0 if there is no ink.
    int letterHeight = 0;
    /// The same for the smallest tenth.
    int smallLetterHeight = 0;
};

/// Separates the ink of a picture drawn by a computer, where text stands on plain or smoothly changing surfaces.
/// A photograph or a scan has few of these: it is kept as it is, but inverted if it is mostly dark.
Ink findInk(const GreyPicture& picture);
