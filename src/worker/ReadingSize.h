#pragma once

#include "worker/Ink.h"

/// The ink scaled to the letter size at which recognition works best.
GreyPicture atReadingSize(const Ink& ink);
