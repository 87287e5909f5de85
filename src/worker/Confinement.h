#pragma once

#include <span>

// What a process that decodes files of unknown origin may still do. Both calls are for good, and are made once, while
// the process has one thread.

/// The descriptor that a job's result is written to, if it has one. Its source is the standard input.
constexpr int kResult = 3;

/// Ends the process with the one that started it, after a minute, or when it used a minute of CPU time; gives it 2 GiB
/// of address space, files of 512 MiB at most, and a few hundred threads; no core is dumped, nothing inherited stays
/// open but the standard streams and the result, and others come first for the processor. False if that is impossible.
bool limitResources();

/// From here on it can do only what decoding takes: compute, start threads, use what is open, and open files to read.
/// Where the kernel has Landlock, these are the system's libraries and what is at or below `readable`; of other files
/// it can still learn what stat() tells. Where it has none, any file that its user may read: what it read can go
/// nowhere but into the result and the answer. False if that is impossible, also when Landlock is there but fails.
bool restrictAccess(std::span<const char* const> readable);
