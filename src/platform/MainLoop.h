#pragma once

#include <functional>
#include <memory>

/// A pending call of the main loop. Destroying or cancelling it cancels the call.
class TimerHandle {
 public:
    TimerHandle() = default;
    explicit TimerHandle(std::shared_ptr<void> timer) : timer_(std::move(timer)) {}

    void cancel() { timer_.reset(); }
    /// Whether there is a timer: false after cancel() and for a default-constructed handle. Stays true after a one-shot
    /// timer has fired, until it is replaced or cancelled.
    explicit operator bool() const { return timer_ != nullptr; }

    TimerHandle(TimerHandle&&) noexcept = default;
    TimerHandle& operator=(TimerHandle&&) noexcept = default;
    TimerHandle(const TimerHandle&) = delete;
    TimerHandle& operator=(const TimerHandle&) = delete;

 private:
    std::shared_ptr<void> timer_;
};

/// The loop of the main thread. `post` may be called from any thread, everything else from the main thread only.
/// A callback may cancel its own timer or start others.
class MainLoop {
 public:
    using Callback = std::function<void()>;

    virtual ~MainLoop() = default;

    /// Runs `callback` on the main thread later, in the order of posting.
    virtual void post(Callback callback) = 0;
    /// Runs `callback` once, `seconds` from now, unless the handle is destroyed before.
    [[nodiscard]] virtual TimerHandle after(double seconds, Callback callback) = 0;
    /// Runs `callback` every `seconds`, first after `seconds`, until the handle is destroyed. Periods of 0.25 s and
    /// more may be off by a few per cent, so that several timers share a wake-up.
    [[nodiscard]] virtual TimerHandle every(double seconds, Callback callback) = 0;
};
