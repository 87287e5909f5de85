#pragma once

#include <optional>

#include "worker/Result.h"

enum class ChewMode { jpeg, png, smaller };

/// Converts the image that is open as `source` and writes the new one to the descriptor `result`. The caller keeps both
/// descriptors; `result` is negative if there is none.
///
/// Failures: 1 the image cannot be opened, 2 there is no result to write to, 3 it cannot be written to its end.
std::optional<Failure> chew(int source, ChewMode mode, int result);
