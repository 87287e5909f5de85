#pragma once

/// Leaves the process, whose id and threads must not change otherwise, the system calls that decoding takes. All others
/// fail as in a kernel that does not have them, so that a library which can do without takes another way. False if that
/// is impossible.
bool allowOnlyDecoding();
