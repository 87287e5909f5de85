#pragma once

#include <QByteArray>
#include <QList>

/// Starts a detached program: not our child, and without our descriptors, output or blocked signals, but with our
/// environment. The first word of `command` is looked up in PATH; words are bytes, like file names. False if there is
/// no such program. Blocks on the disk: only away from the main thread.
bool startProgram(const QList<QByteArray>& command);
