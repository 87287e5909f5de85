#pragma once

#include <QSocketNotifier>
#include <functional>
#include <memory>

/// Turns the signals that ask a program to end (terminate, interrupt, hang up) into an orderly end on the main thread.
/// Created once, while no other thread runs.
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
