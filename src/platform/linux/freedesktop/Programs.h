#pragma once

#include <QByteArray>
#include <QList>

/// Starts a program that has nothing to do with this one any more: no child of it, none of its descriptors, output or
/// blocked signals, but its environment. The first word of `command` is looked up in the PATH; the words are bytes, as
/// file names are. False if there is no such program. Waits for disks: only away from the main thread.
bool startProgram(const QList<QByteArray>& command);
