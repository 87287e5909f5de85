#pragma once

#include <span>

// The sandbox of a process that decodes untrusted files. Both calls are irrevocable; make them once, while the process
// has one thread.

/// The descriptor for a job's result, if it has one. Its source is the standard input.
constexpr int kResult = 3;

/// Makes the process end with its parent, after a minute, or after a minute of CPU time. Limits it to 2 GiB of address
/// space, files of 512 MiB and a few hundred threads; disables core dumps, closes all inherited descriptors except the
/// standard streams and the result, and lowers its priority. False on failure.
bool limitResources();

/// Leaves the process only what decoding needs: computing, starting threads, using open descriptors, and opening files
/// for reading. With Landlock, only the system's libraries and what is at or below `readable` can be opened, though
/// stat() still works on other files. Without it, any file that the user may read; what is read can still go nowhere
/// but into the result and the answer. False on failure, including a failure of Landlock where the kernel supports it.
bool restrictAccess(std::span<const char* const> readable);
