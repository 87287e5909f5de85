#include "app/EndSignals.h"

#include <sys/eventfd.h>
#include <unistd.h>

#include <array>
#include <csignal>
#include <cstdint>

namespace {

constexpr std::array kSignals{SIGTERM, SIGINT, SIGHUP};

// A signal handler can only use globals. The signals are handled rather than blocked, because child processes would
// inherit a blocked mask.
volatile sig_atomic_t wakeDescriptor = -1;

void wake(int /*signal*/) {
    const std::uint64_t one = 1;
    [[maybe_unused]] const auto written = write(int(wakeDescriptor), &one, sizeof one);
}

// Signals that were ignored when we were started, as under nohup, stay ignored.
void handle(void (*handler)(int)) {
    struct sigaction action = {};
    action.sa_handler = handler;
    action.sa_flags = SA_RESTART;
    for (const int signal : kSignals) {
        struct sigaction before = {};
        if (sigaction(signal, nullptr, &before) == 0 && before.sa_handler != SIG_IGN)
            sigaction(signal, &action, nullptr);
    }
}

}  // namespace

EndSignals::EndSignals(std::function<void()> quit) : descriptor_(eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK)) {
    notifier_ = std::make_unique<QSocketNotifier>(descriptor_, QSocketNotifier::Read);
    QObject::connect(notifier_.get(), &QSocketNotifier::activated, [fd = descriptor_, quit = std::move(quit)] {
        std::uint64_t count = 0;
        if (read(fd, &count, sizeof count) == sizeof count) quit();
    });
    wakeDescriptor = descriptor_;
    handle(wake);
}

EndSignals::~EndSignals() {
    handle(SIG_DFL);
    notifier_.reset();
    close(descriptor_);
}
