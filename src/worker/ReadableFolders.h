#pragma once

/// Leaves the process no file to open but, to be read, those that libraries come to need: other libraries, fonts and
/// recognition data. Does nothing where the kernel has no Landlock. False when it has, but that is impossible.
bool allowReadingLibrariesOnly();
