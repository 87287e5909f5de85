#pragma once

#include <functional>
#include <memory>

/// A pending call of the main loop; dropping or cancelling it means that the call does not happen (any more).
class TimerHandle {
 public:
    TimerHandle() = default;
    explicit TimerHandle(std::shared_ptr<void> timer) : timer_(std::move(timer)) {}

    void cancel() { timer_.reset(); }
    /// Whether a call may still come: false after cancel() and for a handle made empty. A one-shot timer that has fired
    /// keeps its handle until it is replaced or cancelled.
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

    /// Runs `callback` on the main thread in the order of posting, after what runs now has returned.
    virtual void post(Callback callback) = 0;
    /// Runs `callback` once, `seconds` from now, unless the handle is dropped before.
    [[nodiscard]] virtual TimerHandle after(double seconds, Callback callback) = 0;
    /// Runs `callback` every `seconds`, first after `seconds`, until the handle is dropped. Periods of a quarter of a
    /// second and more may be moved by a few per cent, so that several timers share a wake-up.
    [[nodiscard]] virtual TimerHandle every(double seconds, Callback callback) = 0;
};
