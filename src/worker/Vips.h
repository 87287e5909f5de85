#pragma once

/// Readies libvips, with no decoder allowed but those that are called by their names, and without a memory of what it
/// did. To be called before each use; false when the library cannot be used.
bool startVips();
