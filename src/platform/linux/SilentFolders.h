#pragma once

#include <QByteArray>
#include <QList>
#include <utility>

/// Hides those of the user's folders, home and those for configuration, data and caches, whose disk does not answer
/// within a fraction of a second from what reads them on the main thread, where it would wait for ever: the toolkit's
/// start and its font library's. Created before the application and while no other thread runs that reads the
/// environment.
class SilentFolders {
 public:
    SilentFolders();

    /// Once the application exists: the environment is as it was, for ourselves and for programs that we start. Waits
    /// for no disk.
    void reveal();

 private:
    QList<std::pair<const char*, QByteArray>> hidden_;  // the variable, and its value if it was set
};
