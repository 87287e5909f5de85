#include "platform/linux/QtMainLoop.h"

#include <QTimer>
#include <cmath>

namespace {

// From this period on the toolkit may move a timer a little, so that timers that come close share a wake-up.
constexpr double kCoarsePeriod = 0.25;

/// A timer whose callback may drop it.
TimerHandle start(double seconds, bool repeats, Qt::TimerType type, MainLoop::Callback callback) {
    // Deleted later rather than at once: the handle may be dropped from inside the timer's own signal.
    const std::shared_ptr<QTimer> timer(new QTimer, [](QTimer* dropped) {
        dropped->stop();
        dropped->disconnect();
        dropped->deleteLater();
    });
    timer->setTimerType(type);
    timer->setSingleShot(!repeats);
    QObject::connect(
        timer.get(), &QTimer::timeout, [callback = std::make_shared<MainLoop::Callback>(std::move(callback))] {
            // Disconnecting destroys this closure; the callback itself stays until it has returned.
            const auto kept = callback;  // NOLINT(performance-unnecessary-copy-initialization): the copy is the point
            (*kept)();
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
