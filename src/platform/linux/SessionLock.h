#pragma once

#include <memory>

#include "platform/BackgroundJobs.h"
#include "platform/ScreenLock.h"

/// What the session tells of its lock: logind's hint, and the desktop's own screen saver. Neither is started by asking,
/// and where neither answers the screen is not locked. Main thread only; the buses are waited for on `queue`, which
/// with `loop` must outlive the object.
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
