#pragma once

#include <QSocketNotifier>
#include <functional>
#include <memory>

/// Turns SIGTERM, SIGINT and SIGHUP into an orderly exit on the main thread. Create it once, before any other thread.
class EndSignals {
 public:
    explicit EndSignals(std::function<void()> quit);
    ~EndSignals();
    EndSignals(const EndSignals&) = delete;
    EndSignals& operator=(const EndSignals&) = delete;

 private:
    int descriptor_;
    std::unique_ptr<QSocketNotifier> notifier_;
};
