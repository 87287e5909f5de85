#pragma once

#include <memory>

#include "platform/BackgroundQueue.h"
#include "platform/MainLoop.h"
#include "platform/Pasteboard.h"
#include "platform/Sharing.h"

/// Offers mail, devices of KDE Connect, Bluetooth, the programs that can open the thing, and the clipboard; each only
/// where it is. All must outlive the object, and `loop` and `pasteboard` the queue.
class DesktopSharing : public Sharing {
 public:
    DesktopSharing(BackgroundQueue& queue, MainLoop& loop, Pasteboard& pasteboard)
        : queue_(queue), loop_(loop), pasteboard_(pasteboard) {}

    /// `found` is called within two seconds; what has not answered by then is left out. After the end of this object it
    /// is not called any more.
    void offers(const QUrl& thing, std::function<void(const QList<ShareOffer>&)> found) override;

 private:
    BackgroundQueue& queue_;
    MainLoop& loop_;
    Pasteboard& pasteboard_;
    /// For what comes back from the queue.
    std::shared_ptr<bool> alive_ = std::make_shared<bool>(true);
};
