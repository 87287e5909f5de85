#pragma once

#include "worker/NewFile.h"

// What a process that decodes files of unknown origin may still do. Both are for good, and are called once, while the
// process has one thread.

/// Ends the process with the one that started it, after a minute, or when it used a minute of CPU time; gives it 2 GiB
/// of address space and files of 512 MiB at most; no core is dumped, nothing inherited stays open but the standard
/// streams, and others come first for the processor. False if that is impossible.
bool limitResources();

/// From here on it can start no program or process, reach no network and no other process, and change nothing about
/// existing files. Where the kernel has Landlock, it can open no file to write, new or not; what is open stays so, and
/// `result`, if there is one, can still be named. That right cannot be had for one file: it is for its folder and those
/// below, where empty files can be made too and, if the result is hidden until then, names can be changed and removed.
/// False if the first part is impossible.
bool restrictAccess(const NewFile* result);
