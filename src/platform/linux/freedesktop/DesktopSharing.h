#pragma once

#include "platform/BackgroundJobs.h"
#include "platform/Pasteboard.h"
#include "platform/Sharing.h"

/// Offers mail, KDE Connect devices, Bluetooth, programs that can open the thing, and the clipboard, as available. All
/// parameters must outlive the object, and `loop` and `pasteboard` the queue.
class DesktopSharing : public Sharing {
 public:
    DesktopSharing(BackgroundQueue& queue, MainLoop& loop, Pasteboard& pasteboard)
        : queue_(queue), loop_(loop), pasteboard_(pasteboard), jobs_(queue, loop) {}

    /// `found` is called within two seconds, without what has not answered by then. It is never called after this
    /// object is destroyed.
    void offers(const QUrl& thing, std::function<void(const QList<ShareOffer>&)> found) override;

 private:
    BackgroundQueue& queue_;
    MainLoop& loop_;
    Pasteboard& pasteboard_;
    BackgroundJobs jobs_;
    Lifetime lifetime_;
};
