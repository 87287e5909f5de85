#pragma once

/// Readies libvips, with no decoder allowed but those that are called by their names, and without a memory of what it
/// did. To be called before each use; false when the library cannot be used.
bool startVips();

/// Loads the decoder that a build of libvips may keep in the module of this name, such as "heif". One that it has built
/// in needs no loading; one that is missing fails when it is called.
void loadVipsModule(const char* name);
