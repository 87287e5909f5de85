#pragma once

#include "worker/Ink.h"

/// The ink at the size that recognition was made for: small letters become larger, giant ones smaller.
/// Gives it back as it is when there is no memory for more.
GreyPicture atReadingSize(Ink ink);
