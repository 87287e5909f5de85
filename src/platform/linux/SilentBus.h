#pragma once

#include <QByteArray>
#include <optional>

/// Whether the first reachable bus of `addresses` (as in DBUS_SESSION_BUS_ADDRESS) accepts a connection but does not
/// reply within `seconds`: libdbus would block on it forever. A bus that is missing, or not on a local socket, is not
/// silent. Blocks for up to `seconds`.
bool isSilentBus(const QByteArray& addresses, double seconds);

/// The address of the session bus; empty if there is none.
QByteArray sessionBusAddress();
QByteArray systemBusAddress();

/// Hides a session bus that is silent or missing from Qt, which calls it on the main thread and would start a bus if
/// there is none. Create it before the QApplication; blocks for two seconds at most.
class SilentBusGuard {
 public:
    SilentBusGuard();

    /// Call once there is a QApplication, so that child processes inherit the original environment.
    void restoreEnvironment();

 private:
    bool hiding_ = false;
    std::optional<QByteArray> before_;
};
