#pragma once

#include <span>

/// Allows the process to open only the system's libraries and what is at or below `places`, and only for reading. Does
/// nothing if the kernel has no Landlock. False if it has, but fails.
bool allowReadingOnly(std::span<const char* const> places);
