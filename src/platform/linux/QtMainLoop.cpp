#include "platform/linux/QtMainLoop.h"

#include <QTimer>
#include <cmath>

namespace {

// Timers with at least this period may be coalesced, so that they share wake-ups.
constexpr double kCoarsePeriod = 0.25;

/// A timer whose callback may drop it.
TimerHandle start(double seconds, bool repeats, Qt::TimerType type, MainLoop::Callback callback) {
    // Deleted later, because the handle may be dropped from within the timer's own callback.
    const std::shared_ptr<QTimer> timer(new QTimer, [](QTimer* dropped) {
        dropped->stop();
        dropped->disconnect();
        dropped->deleteLater();
    });
    timer->setTimerType(type);
    timer->setSingleShot(!repeats);
    QObject::connect(timer.get(), &QTimer::timeout,
                     [callback = std::make_shared<MainLoop::Callback>(std::move(callback))] {
                         // Disconnecting destroys this closure, so keep the callback alive until it has returned.
                         const auto running =
                             callback;  // NOLINT(performance-unnecessary-copy-initialization): the copy is the point
                         (*running)();
                     });
    timer->start(int(std::ceil(seconds * 1000)));
    return TimerHandle(timer);
}

}  // namespace

void QtMainLoop::post(Callback callback) {
    QMetaObject::invokeMethod(&receiver_, std::move(callback), Qt::QueuedConnection);
}

TimerHandle QtMainLoop::after(double seconds, Callback callback) {
    return start(seconds, false, Qt::PreciseTimer, std::move(callback));
}

TimerHandle QtMainLoop::every(double seconds, Callback callback) {
    return start(seconds, true, seconds < kCoarsePeriod ? Qt::PreciseTimer : Qt::CoarseTimer, std::move(callback));
}
