#pragma once

#include "worker/Ink.h"

/// The ink at the size that recognition was made for: small letters become larger, giant ones smaller.
GreyPicture atReadingSize(const Ink& ink);
