#pragma once

#include <span>

/// Leaves the process no file to open but, to be read, the system's libraries and what is at or below these places.
/// Does nothing where the kernel has no Landlock. False when it has, but that is impossible.
bool allowReadingOnly(std::span<const char* const> places);
