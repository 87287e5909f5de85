#pragma once

#include <optional>

#include "worker/Result.h"

enum class ChewMode { jpeg, png, smaller };

/// Converts the image that the descriptor `source` reads, and writes the new one to the descriptor `result`, or says
/// why it could not. Both stay the caller's; a negative `result` is none.
///
/// Failures: 1 the image cannot be opened, 2 there is no result to write to, 3 it cannot be written to its end.
std::optional<Failure> chew(int source, ChewMode mode, int result);
