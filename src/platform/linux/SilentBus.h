#pragma once

#include <QByteArray>
#include <optional>

/// Whether a message bus at one of `addresses`, in the form of DBUS_SESSION_BUS_ADDRESS, lets programs connect but does
/// not greet them within `seconds`, or takes no calls after that: the library would wait for such a one for ever. What
/// is not there at all, or is not a socket of this machine, is not silent. Waits as long as that.
bool isSilentBus(const QByteArray& addresses, double seconds);

/// Where programs find the session bus; empty where there is none.
QByteArray sessionBusAddress();
QByteArray systemBusAddress();

/// Makes the toolkit, which asks the session bus on the main thread, do without one that is silent or missing; without
/// one it would start a bus of its own. To be made before the QApplication; waits for two seconds at most.
class SilentBusGuard {
 public:
    SilentBusGuard();

    /// To be called once there is a QApplication: programs that are started from now on make their own choice again.
    void restoreEnvironment();

 private:
    bool hiding_ = false;
    std::optional<QByteArray> before_;
};
