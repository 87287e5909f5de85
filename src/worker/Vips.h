#pragma once

/// Initialises libvips once, with only the decoders that we use and without a cache. Call before each use; false if the
/// library cannot be used.
bool startVips();

/// Loads the libvips module of this name, such as "heif", if its decoder is not built in. If it is missing, decoding
/// fails later.
void loadVipsModule(const char* name);
