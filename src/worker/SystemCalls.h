#pragma once

/// Allows only the system calls that decoding needs; call it while the process has one thread, and do not fork. All
/// others fail with ENOSYS, so that libraries fall back on alternatives if they have any. False on failure.
bool allowOnlyDecoding();
