#pragma once

#include <memory>

#include "platform/BackgroundJobs.h"
#include "platform/ScreenLock.h"

/// The session's lock state: logind's hint, or the desktop's screen saver. Neither service is activated by asking, and
/// without an answer the screen counts as unlocked. Main thread only; the bus calls block on `queue`, which like `loop`
/// must outlive the object.
class SessionLock : public ScreenLock {
 public:
    SessionLock(MainLoop& loop, BackgroundQueue& queue);
    ~SessionLock() override;

    bool locked() const override { return locked_; }

 private:
    struct Buses;

    void ask();

    bool locked_ = false;
    bool asking_ = false, askAgain_ = false;
    std::shared_ptr<Buses> buses_;
    BackgroundJobs jobs_;
};
