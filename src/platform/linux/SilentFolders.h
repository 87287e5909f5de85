#pragma once

#include <QByteArray>
#include <QList>
#include <utility>

/// Hides those of the user's home, configuration, data and cache folders whose disk does not answer within a fraction
/// of a second from Qt and fontconfig, which would block on them at startup on the main thread. Create it before the
/// application, while no other thread reads the environment.
class SilentFolders {
 public:
    SilentFolders();

    /// Call once the application exists: restores the environment, for ourselves and for child processes. Never blocks
    /// on a disk.
    void reveal();

 private:
    QList<std::pair<const char*, QByteArray>> hidden_;  // the variable, and its value if it was set
};
